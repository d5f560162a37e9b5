package org.kestro.tarnex;

import java.util.List;

/**
 * Why a request got no path.
 *
 * @param reason the reason
 * @param sentence the same for people; names ids
 * @param largestBandwidth the largest bandwidth that would have been placed on the same terms, to
 *        the last bit; for backups what of their primary's they could have carried; 0 also when no
 *        bandwidth would help
 * @param inTheWay by link id; for a given path its links without room; empty where no bandwidth
 *        would help. For backups only {@link Engine#explainProtection} tells this and the bandwidth
 */
public record Refusal(Reason reason, String sentence, double largestBandwidth,
                      List<LinkInTheWay> inTheWay)
        implements PlaceResult, ProtectResult, BackupResult {
    /** Takes a copy of the list. */
    public Refusal {
        inTheWay = List.copyOf(inTheWay);
    }

    /**
     * A link from the nodes that can still be reached to those that cannot.
     *
     * @param link its id
     * @param room the largest bandwidth that it would take on the same terms
     */
    public record LinkInTheWay(int link, double room) {
    }
}
