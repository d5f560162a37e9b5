package org.kestro.tarnex;

/**
 * The native methods, which the library registers when it is loaded, and the numbers of the
 * operations. Has no initialiser that loads the library: the library initialises this class.
 */
final class Native {
    static final int ADD_NODE = 0;
    static final int ADD_LINK = 1;
    static final int REMOVE_LINK = 2;
    static final int REMOVE_NODE = 3;
    static final int PLACE = 4;
    static final int PLACE_ALL = 5;
    static final int PROPOSE = 6;
    static final int PROTECT = 7;
    static final int ADD_PRIMARY = 8;
    static final int ADD_BACKUP = 9;
    static final int REMOVE = 10;
    static final int EXPLAIN = 11;
    static final int EXPLAIN_PROTECTION = 12;
    static final int COUNTS = 13;
    static final int NODES = 14;
    static final int LSPS = 15;
    static final int LINK_BETWEEN = 16;
    static final int USE = 17;
    static final int USES = 18;
    static final int LSPS_ON = 19;
    static final int HAS = 20;
    static final int LSP = 21;
    static final int BACKUPS_OF = 22;
    static final int TRAIL = 23;

    private Native() {
    }

    /** Opens an engine and returns its handle. */
    static native long open(double[] options);

    /** Closes an engine; false when the handle is not that of an open one. */
    static native boolean close(long handle);

    /** Performs an operation; texts that belong to the answer go to the first of {@code texts}. */
    static native double[] call(long handle, int operation, double[] arguments, String[] texts);

    /** Bytes in the engines' tables in this process, modulo 2^32. */
    static native long countedMemory();
}
