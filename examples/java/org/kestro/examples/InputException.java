package org.kestro.examples;

import java.nio.file.Path;

/** An input file that does not follow its format; the message starts with file and line. */
final class InputException extends Exception {
    private static final long serialVersionUID = 1L;

    InputException(Path file, int line, String message) {
        super(file + ":" + line + ": " + message);
    }
}
