package org.kestro.examples;

import java.nio.file.Path;

/** An input file that cannot be read or does not follow its format; the message says where. */
final class InputException extends Exception {
    private static final long serialVersionUID = 1L;

    InputException(Path file, int line, String message) {
        super(file + ":" + line + ": " + message);
    }

    /** The file cannot be read. */
    InputException(Path file, String reason) {
        super("cannot read " + file + ": " + reason);
    }
}
