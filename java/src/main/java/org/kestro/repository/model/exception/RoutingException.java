package org.kestro.repository.model.exception;

/**
 * The list of LSPs that a new LSP would preempt could not be drawn up.
 *
 * <p>The engine throws it without a message; the trail of causes stays on the error stack of the
 * session and is printed to standard error when the session is killed.
 */
public class RoutingException extends Exception {
    private static final long serialVersionUID = 1L;

    /** Makes an exception without a message, as the engine does. */
    public RoutingException() {
        super();
    }

    /**
     * Makes an exception with a message.
     *
     * @param message what went wrong, for a reader
     */
    public RoutingException(String message) {
        super(message);
    }
}
