package org.kestro.tarnex;

/** What became of a request: a {@link Placement}, or the {@link Refusal} in its place. */
public sealed interface PlaceResult permits Placement, Refusal {
}
