package org.kestro.repository.model.exception;

/**
 * No path was found: the destination cannot be reached over links that may carry the request, or
 * one of its end nodes does not exist.
 *
 * <p>The engine throws it without a message; the trail of causes stays on the error stack of the
 * session and is printed to standard error when the session is killed.
 */
public class NoRouteToHostException extends Exception {
    private static final long serialVersionUID = 1L;

    /** Makes an exception without a message, as the engine does. */
    public NoRouteToHostException() {
        super();
    }

    /**
     * Makes an exception with a message.
     *
     * @param message what went wrong, for a reader
     */
    public NoRouteToHostException(String message) {
        super(message);
    }
}
