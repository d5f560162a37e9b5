package org.kestro.tarnex;

/** A backup that was to be set up: an {@link Lsp}, or the {@link Refusal} in its place. */
public sealed interface BackupResult permits Lsp, Refusal {
}
