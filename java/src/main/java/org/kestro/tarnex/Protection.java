package org.kestro.tarnex;

import java.util.List;

/**
 * The backups of one primary.
 *
 * @param backups along its path, each with what it protects
 */
public record Protection(List<Lsp> backups) implements ProtectResult {
    /** Takes a copy of the list. */
    public Protection {
        backups = List.copyOf(backups);
    }
}
