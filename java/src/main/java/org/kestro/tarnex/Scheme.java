package org.kestro.tarnex;

/** How an LSP is to be protected. */
public enum Scheme {
    /** A backup for every link of the path, around the node behind it where possible. */
    LOCAL,
    /** One backup from end to end, avoiding the path's nodes where possible. */
    GLOBAL,
    /** Global where local is refused. */
    LOCAL_OR_GLOBAL
}
