package org.kestro.repository.TARNEX;

/** Unusual engine objects, for the tests that call the native methods directly. */
final class EngineObjects {
    private EngineObjects() {
    }

    /** Has both fields from its parent. */
    static final class Derived extends JNITARNEX {
    }

    /** Names a session and has nowhere to put preempted LSPs. */
    static final class WithoutLsps {
        int sessId = -1;
    }
}
