package org.kestro.tarnex;

/**
 * An LSP in full.
 *
 * @param id its id
 * @param kind what it is
 * @param classType its class type
 * @param level its preemption level, 0 is the most important; of a backup: 0
 * @param bandwidth its bandwidth
 * @param path its path
 * @param protects what it protects; nothing for a primary
 */
public record Lsp(int id, LspKind kind, int classType, int level, double bandwidth, Path path,
                  Protects protects) implements BackupResult {
}
