package org.kestro.tarnex;

/** What the path of a primary LSP is to be good for. */
public enum Objective {
    /** Few links. */
    HOPS,
    /** Little load on links that are relatively full: the growth of squared utilisation. */
    LOAD,
    /** Utilisation that varies little over the network. */
    BALANCE,
    /** Little queueing delay: the growth of 1 / (capacity - load). */
    DELAY,
    /** The piecewise-linear link cost of Fortz and Thorup. */
    FORTZ
}
