package org.kestro.tarnex;

/** What an LSP is. */
public enum LspKind {
    /** It carries traffic as long as nothing fails. */
    PRIMARY,
    /** It leads around one link of a primary. */
    LOCAL_BACKUP,
    /** It leads from end to end. */
    GLOBAL_BACKUP
}
