package org.kestro.tarnex;

import java.util.List;
import java.util.OptionalDouble;

/**
 * A primary LSP that was placed, or would be.
 *
 * @param id its id; -1 if it was only proposed and the request names none
 * @param path its path
 * @param score of the path on the terms of the engine's weights; none for a given path, and where
 *        a link has no finite cost
 * @param victims the LSPs that have given way, or would: primaries by id, each followed by its
 *        backups
 */
public record Placement(int id, Path path, OptionalDouble score, List<Lsp> victims)
        implements PlaceResult {
    /** Takes a copy of the list. */
    public Placement {
        victims = List.copyOf(victims);
    }
}
