package org.kestro.tarnex;

/** Why something was refused. */
public enum Reason {
    /** An end of the request is no node of the network. */
    NO_SUCH_NODE,
    /** Ingress and egress are the same node. */
    SAME_ENDS,
    /** There is no path, whatever the bandwidth. */
    NOT_CONNECTED,
    /** There are paths, but none with room. */
    NO_ROOM,
    /** For a backup: every path shares a link with what it is to protect. */
    NO_DISJOINT_PATH,
    /** For a backup: there are disjoint paths, but none with room. */
    NO_ROOM_FOR_DISJOINT_PATH
}
