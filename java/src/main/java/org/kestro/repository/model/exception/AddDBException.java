package org.kestro.repository.model.exception;

/**
 * An operation on the network database failed: a node, link or LSP could not be added or removed,
 * or a computed LSP was refused on admission.
 *
 * <p>The engine throws it without a message; the trail of causes stays on the error stack of the
 * session and is printed to standard error when the session is killed.
 */
public class AddDBException extends Exception {
    private static final long serialVersionUID = 1L;

    /** Makes an exception without a message, as the engine does. */
    public AddDBException() {
        super();
    }

    /**
     * Makes an exception with a message.
     *
     * @param message what went wrong, for a reader
     */
    public AddDBException(String message) {
        super(message);
    }
}
