package org.kestro;

import org.kestro.tarnex.Engine;
import org.kestro.tarnex.Options;

/** A program that opens an engine, and says what came of it. */
public final class UseEngine {
    private UseEngine() {
    }

    public static void main(String[] arguments) {
        if (Boolean.getBoolean("interrupted")) {
            Thread.currentThread().interrupt();
        }
        try (Engine engine = new Engine(Options.builder().build())) {
            engine.addNode(4);
            System.out.println("nodes " + engine.nodes());
            if (Thread.interrupted() != Boolean.getBoolean("interrupted")) {
                throw new IllegalStateException("The interruption is lost.");
            }
        } catch (UnsatisfiedLinkError error) {
            System.out.println(error.getMessage());
        }
    }
}
