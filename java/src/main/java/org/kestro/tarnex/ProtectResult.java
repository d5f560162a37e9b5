package org.kestro.tarnex;

/** The backups of a primary: a {@link Protection}, or the {@link Refusal} in its place. */
public sealed interface ProtectResult permits Protection, Refusal {
}
