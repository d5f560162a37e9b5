package org.kestro.tarnex;

/**
 * What a link carries. Tables are indexed [class type][level], 8 by 8, and belong to the caller;
 * levels are single in them: the sum over 0 to p is what level p may rely on.
 *
 * @param id id of the link
 * @param from id of the node where it starts
 * @param to id of the node where it ends
 * @param capacity per class type
 * @param primary reserved by primaries
 * @param shared what the largest need over all single failures adds
 * @param total reserved altogether
 */
public record LinkUse(int id, int from, int to, double[] capacity, double[][] primary,
                      double[][] shared, double[][] total) {
}
