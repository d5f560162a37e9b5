package org.kestro.repository.TARNEX;

import org.kestro.repository.model.exception.AddDBException;
import org.kestro.repository.model.exception.NoRouteToHostException;
import org.kestro.repository.model.exception.RoutingException;
import org.kestro.tarnex.internal.NativeLibrary;

/**
 * A path computation engine for MPLS networks with DiffServ classes.
 *
 * <p>An engine object stands for one session of the native library: one network of nodes and
 * directed links, the LSPs (label switched paths) placed on it, and one configuration. A session
 * starts with {@link #jniinitTarnex} and ends with {@link #jnikillTarnex}; up to 128 sessions live
 * at the same time, and what one does is invisible to the others.
 *
 * <h2>Terms and units</h2>
 *
 * <ul>
 * <li><b>Ids</b> of nodes, links and LSPs are chosen by the caller, are 0 or more and index tables
 *     directly: keep them small and dense. The memory for links grows with the largest node id
 *     times the number of nodes with outgoing links. There is at most one link per ordered pair of
 *     nodes.
 * <li><b>Bandwidths</b> and capacities share one unit of the caller's choice, such as Mbit/s. The
 *     engine stores and prints the figures as they come.
 * <li>A <b>class type</b> (OA, an ordered aggregate) is a DiffServ class with a capacity of its
 *     own on every link. Class types are numbered from 0; a call that names a class type outside
 *     0 to nbOA - 1 asks for no bandwidth in any class type.
 * <li>A <b>preemption level</b> (PL) tells how important an LSP is: 0 is the most important, 7 the
 *     least. An LSP may push aside LSPs at numerically greater levels only. All eight levels are
 *     accepted and reserve alike whatever the number nbPL of levels in use: that limits only the
 *     shapes of arrays and the levels that have a price.
 * <li>A <b>path</b> is a list of node ids from the first node to the last.
 * </ul>
 *
 * <p>A link carries a new LSP if the LSP and everything reserved on the link in its class type, at
 * its own and at more important levels, fit into the capacity. What is reserved at less important
 * levels gives way where preemption is allowed, and counts like the rest where it is not.
 *
 * <h2>Failures</h2>
 *
 * <ul>
 * <li>An operation that fails throws one of the checked exceptions named by its method, without a
 *     message. The trail of causes is kept in the session and printed to standard error, newest
 *     first, by {@link #jnikillTarnex}.
 * <li>A call outside the contract throws {@link IllegalArgumentException} with a message that
 *     names the argument, and changes nothing. Such calls are: null arrays or rows; arrays or rows
 *     with fewer elements than the class types and levels in use; a number of class types or
 *     levels outside 1 to 8; a preemption level outside 0 to 7; a bandwidth that is negative or
 *     not finite; a capacity that is not a number; fewer ids for backups than backups that are to
 *     be added.
 * <li>A call on an object that never had a session does nothing and returns null where a result
 *     is due; {@link #jnikillTarnex} says so on standard error.
 * <li>After a kill the number of the session may be given to another object. A killed object must
 *     then not be used, not even killed again: its calls would act on that session. Set
 *     {@code sessId = -1} after the kill; the object is then like one that never had a session.
 * </ul>
 *
 * <h2>Threads</h2>
 *
 * <p>Calls may come from any thread, on different engine objects or on the same. The library takes
 * them one at a time in the whole process: a call waits until the one before it has returned or is
 * about to throw. The fields {@link #sessId} and {@link #lsps} are ordinary ones: threads that share
 * an engine object and read {@link #lsps} have to agree on whose result it holds. The numbers of
 * class types and levels are shared by all sessions: those of the latest initialisation hold for
 * every live one.
 */
public class JNITARNEX {
    static {
        NativeLibrary.load();
    }

    /**
     * The number of this object's session, 0 to 127; -1 before the first initialisation.
     *
     * <p>Written by {@link #jniinitTarnex} when it succeeds and read by every other call. Callers
     * read it, to see whether an initialisation succeeded, and write it on one occasion only:
     * killing the session leaves the number in place, and it may be given to another object. Set
     * {@code sessId = -1} after the kill, so that this object cannot act on that session.
     */
    public int sessId = -1;

    /**
     * Ids of the LSPs removed by preemption, in ascending order.
     *
     * <p>Replaced by {@link #jnicomputePath} when a call removes LSPs and left untouched by every
     * other call, also by a path computation that removes none. A caller that wants to know what
     * one computation removed sets the field to an empty array first.
     */
    public int[] lsps = new int[0];

    /** Makes an engine without a session; {@link #jniinitTarnex} starts one. */
    public JNITARNEX() {
    }

    /**
     * Starts a session with an empty network and writes its number into {@link #sessId}.
     *
     * <p>Nothing is thrown when 128 sessions are live already; {@link #sessId} then keeps its
     * value. A second call on the same object starts a new session and leaves the old one live
     * and out of reach, so kill first.
     *
     * <p>The seven weights say what makes a path dear: its score is the sum over its links of the
     * weighted growth of each criterion when the LSP is added. They are pure numbers and apply to
     * class type 0, except {@code fortz}, which applies to every class type. A weight of 0
     * switches its criterion off. Weights are not checked: NaN or negative ones make the paths
     * meaningless.
     *
     * @param nbOA number of class types in use, 1 to 8
     * @param nbPL number of preemption levels in use, 1 to 8
     * @param colorClause whether links are tested against forbidden colours
     * @param allowReroute whether admission may count on preemption; every later call that admits
     *        or computes an LSP sets this anew
     * @param capacityClause whether links are tested for room; without it every link admits
     *        every LSP, but for links whose id is 268435453 or more
     * @param loadbal weight of the imbalance of utilisation over the whole network
     * @param load weight of the load, in bandwidth units
     * @param sqLoad weight of the squared load
     * @param relativeLoad weight of the utilisation (load divided by capacity)
     * @param sqRelativeLoad weight of the squared utilisation
     * @param delay weight of the queueing delay, 1 / (capacity - load)
     * @param fortz weight of the Fortz-Thorup cost, which rises steeply with utilisation
     * @param reroutingScorecoef penalty per bandwidth unit preempted, indexed [class type][level]:
     *        at least nbOA rows of at least nbPL values
     * @throws IllegalArgumentException if nbOA, nbPL or the shape of reroutingScorecoef is outside
     *         the contract
     */
    public native void jniinitTarnex(int nbOA, int nbPL, boolean colorClause, boolean allowReroute,
                                     boolean capacityClause, float loadbal, float load,
                                     float sqLoad, float relativeLoad, float sqRelativeLoad,
                                     float delay, float fortz, float[][] reroutingScorecoef);

    /**
     * Ends the session: releases its network and prints its error messages to standard error,
     * newest first.
     *
     * <p>{@link #sessId} is not reset: set it to -1. After a kill the number may be given to
     * another object. A killed object must then not be used, not even killed again: its calls
     * would act on that session.
     *
     * <p>A second kill, while the number is still free, and a kill without a session only write
     * "ERROR, call to killTarnex before initTarnex" on standard error.
     */
    public native void jnikillTarnex();

    /**
     * Prints the network to standard output: each node with its neighbours, then each link with
     * the ids of its LSPs and, per class type, its capacity, the bandwidth reserved by primary
     * LSPs and the whole reservation, both summed over the levels. All eight class types are
     * printed, whatever number is in use.
     *
     * <p>The output is that of the native library's buffered standard output, which is not
     * synchronised with {@link System#out}.
     */
    public native void jniprintTarnexDB();

    /**
     * Adds a node.
     *
     * @param nodeId id of the node, 0 or more, not in use
     * @throws AddDBException if the id is negative, too large or in use
     */
    public native void jniaddNode(int nodeId) throws AddDBException;

    /**
     * Adds a directed link between two nodes that exist.
     *
     * <p>{@code color}, {@code pbw}, {@code bbw} and {@code fbw} are accepted and not examined:
     * they may hold anything, also null. The new link has colour 0 and no LSPs. The reservation
     * given in {@code rbw} holds until the first LSP is set up across the link; from then on the
     * reservation is that of the LSPs alone.
     *
     * <p>A link from a node to itself is accepted. So is a negative capacity in any class type:
     * where links are tested for room, such a link carries nothing at all.
     *
     * @param linkId id of the link, 0 or more, not in use
     * @param color not examined
     * @param src id of the node where the link starts
     * @param dst id of the node where the link ends
     * @param cap capacity per class type, in bandwidth units: at least nbOA values
     * @param rbw bandwidth reserved at the start, indexed [class type][level]: at least nbOA rows
     *        of at least nbPL values
     * @param pbw not examined
     * @param bbw not examined
     * @param fbw not examined
     * @throws AddDBException if an id is negative, too large or in use, a node is missing, or the
     *         two nodes are linked in that direction already. A link id so large that no table
     *         can hold it leaves an incomplete link behind, which carries nothing; remove it
     *         (which throws again, but leaves nothing). A link with an id of 268435453 or more
     *         that is added whole carries nothing either
     * @throws IllegalArgumentException if cap or rbw is outside the contract
     */
    public native void jniaddLink(int linkId, int color, int src, int dst, float[] cap,
                                  float[][] rbw, float[][] pbw, float[][] bbw, float[][] fbw)
            throws AddDBException;

    /**
     * Adds a primary LSP whose path was computed elsewhere. Nothing is preempted for it: every
     * link of the path must have room for it beside all that is reserved there.
     *
     * <p>Mind the order: level before class type here, the other way round in
     * {@link #jnicomputePath}.
     *
     * @param lspid id of the LSP, 0 or more, not in use
     * @param path node ids from ingress to egress; with fewer than two, the LSP crosses no link
     *        and is registered as it is
     * @param PL preemption level, 0 to 7
     * @param OA class type; one outside 0 to nbOA - 1 reserves nothing and is not an error
     * @param bw bandwidth, 0 or more
     * @throws AddDBException if a link of the path is missing or has no room, or the id is
     *         negative, too large or in use
     * @throws IllegalArgumentException if path, PL or bw is outside the contract
     */
    public native void jniaddLSP(int lspid, int[] path, int PL, int OA, float bw)
            throws AddDBException;

    /**
     * Adds a backup LSP whose path was computed elsewhere. Nothing is preempted for it. Backups
     * that protect against different failures share the bandwidth they reserve.
     *
     * <p>Mind the order: level before class type here, the other way round in
     * {@link #jnicomputePath}.
     *
     * @param lspid id of the backup, 0 or more, not in use
     * @param plspid id of the primary LSP that it protects
     * @param path node ids: a local backup leaves the primary's path at its first node and rejoins
     *        it at its last, a global backup leads from a node of that path to its egress
     * @param PL preemption level, 0 to 7
     * @param OA class type; one outside 0 to nbOA - 1 reserves nothing and is not an error
     * @param bw bandwidth, 0 or more
     * @param type true for a local backup, false for a global one
     * @throws AddDBException if the primary does not exist, a link of the path is missing or has
     *         no room, or the id is negative, too large or in use
     * @throws IllegalArgumentException if path, PL or bw is outside the contract
     */
    public native void jniaddBackupLSP(int lspid, int plspid, int[] path, int PL, int OA, float bw,
                                       boolean type) throws AddDBException;

    /**
     * Removes an LSP and gives back its bandwidth. The backups of a removed primary stay until
     * they are removed themselves.
     *
     * @param lspid id of the LSP
     * @throws AddDBException if there is no such LSP, a link of its path is gone (the LSP is removed
     *         all the same) or memory is short (nothing has changed; try again)
     */
    public native void jniremoveLSP(int lspid) throws AddDBException;

    /**
     * Removes a node and every link into or out of it. LSPs that crossed it stay registered.
     *
     * @param nodeid id of the node
     * @throws AddDBException if there is no such node
     */
    public native void jniremoveNode(int nodeid) throws AddDBException;

    /**
     * Removes a directed link. LSPs that crossed it stay registered.
     *
     * @param srcNodeId id of the node where the link starts
     * @param dstNodeId id of the node where the link ends
     * @throws AddDBException if there is no such link
     */
    public native void jniremoveLink(int srcNodeId, int dstNodeId) throws AddDBException;

    /**
     * Computes the path of a new primary LSP over the links that admit it, the cheapest by the
     * weights of the session, and places the LSP if asked to.
     *
     * <table>
     * <caption>What the two flags give</caption>
     * <tr><th>ADDLSP</th><th>PREEMPT</th><th>effect</th></tr>
     * <tr><td>false</td><td>false</td><td>none: only the path is returned</td></tr>
     * <tr><td>false</td><td>true</td><td>the LSPs in the way are removed, their ids go into
     *     {@link #lsps}; the new LSP is not added</td></tr>
     * <tr><td>true</td><td>false</td><td>the new LSP is added, nothing is preempted</td></tr>
     * <tr><td>true</td><td>true</td><td>the new LSP is added; the LSPs in the way are removed,
     *     their ids go into {@link #lsps}</td></tr>
     * </table>
     *
     * <p>Mind the order: class type before level here, the other way round in {@link #jniaddLSP}
     * and {@link #jniaddBackupLSP}.
     *
     * <p><b>What is preempted.</b> On each link the levels give way from the least important one
     * towards the new LSP's, and LSPs of other class types may go along. A level that is needed as
     * a whole goes with all its LSPs on the link, of every class type. Of a level that is needed
     * in part, the LSPs of lower-numbered class types go first, all of them, and then the LSPs of
     * the class type that make the room.
     *
     * <p>{@code rrid}, {@code rrsrc}, {@code rrdst} and {@code colorArray} are accepted and not
     * examined; null will do for the array.
     *
     * @param id id of the new LSP, 0 or more, not in use if it is to be added
     * @param src id of the ingress node
     * @param dst id of the egress node
     * @param rrid not examined
     * @param rrsrc not examined
     * @param rrdst not examined
     * @param OA class type; one outside 0 to nbOA - 1 reserves nothing and is not an error
     * @param PL preemption level, 0 to 7
     * @param reservation bandwidth, 0 or more
     * @param colorArray not examined
     * @param ADDLSP whether to add the LSP to the network
     * @param PREEMPT whether less important LSPs may be preempted
     * @return the node ids of the path, src first and dst last; null without a live session
     * @throws NoRouteToHostException if no admissible path leads from src to dst
     * @throws RoutingException if only preemption was asked for and the LSPs to preempt cannot be
     *         determined
     * @throws AddDBException if the LSP cannot be added or a preempted LSP cannot be removed. When
     *         the id is in use or admission refuses the LSP, the network and {@link #lsps} are
     *         unchanged
     * @throws IllegalArgumentException if PL or reservation is outside the contract
     */
    public native int[] jnicomputePath(int id, int src, int dst, int rrid, int rrsrc, int rrdst,
                                       int OA, int PL, float reservation, int[] colorArray,
                                       boolean ADDLSP, boolean PREEMPT)
            throws NoRouteToHostException, RoutingException, AddDBException;

    /**
     * Computes the backups that protect an LSP in place, and adds them if asked to.
     *
     * <ul>
     * <li><b>Local backups</b>: one for each hop of the LSP's path. Element k of the result
     *     protects hop k, the link from path[k] to path[k + 1]: it leaves the LSP at path[k] and
     *     avoids node path[k + 1], rejoining the LSP at a later node. Where no such way has the
     *     room, and always for the last hop, it avoids only the link and rejoins at path[k + 1].
     * <li><b>A global backup</b>: one way from ingress to egress, which is the only element of the
     *     result. It avoids all intermediate nodes of the LSP or, where no such way has the room,
     *     only all its links.
     * </ul>
     *
     * <p>A backup asks for the bandwidth of the LSP that it protects, in the same class types. A
     * link carries it if the capacity holds the backup and all that is reserved there, at every
     * level; that is tested whatever the flags and the clauses of the session say, and colours are
     * not. Among the ways with room the search takes the one that adds least to the reservations,
     * plus a small charge for each link.
     *
     * <p><b>Sharing.</b> A link reserves for backups what the worst single failure asks of it, not
     * their sum: backups share the bandwidth unless one failure puts them to use together. A
     * failure is that of one link, or of one node, which takes all links into it along. The backups
     * of one call share among themselves and with those in place.
     *
     * <table>
     * <caption>What the two flags give</caption>
     * <tr><th>ADDLSP</th><th>PREEMPT</th><th>effect</th></tr>
     * <tr><td>false</td><td>false</td><td>none: only the paths are returned</td></tr>
     * <tr><td>false</td><td>true</td><td>none: the LSPs in the way of each backup are worked out,
     *     but neither removed nor reported</td></tr>
     * <tr><td>true</td><td>false</td><td>the backups are added where they fit</td></tr>
     * <tr><td>true</td><td>true</td><td>the same: adding leaves less important levels out of
     *     account, but the search has already required room beside everything</td></tr>
     * </table>
     *
     * <p>A search that finds nothing leaves only this call's message in the trail; lines on standard
     * output and standard error tell the rest.
     *
     * <p>Backups preempt nothing by themselves: no call removes an LSP or touches {@link #lsps}.
     * They are added in the order of the result, at level 0 whatever the level of the LSP, and do
     * not go when the LSP does: remove them by their ids.
     *
     * <p><b>After a failure.</b> A search that fails for one hop fails the call, and nothing is
     * added. When a backup cannot be added, those before it stay, under the first of the ids, and
     * those after it are not tried; the trail of causes and, on standard error, the figures of the
     * links of its path say why.
     *
     * <p><b>Lines of its own.</b> The library prints, through its buffered standard output, when a
     * global backup has to make do with avoiding links ("Switching from node to link protection for
     * lsp number: " and the id) and when it finds none at all ("Oups ... no path found ..."). To
     * standard error it prints "No end to end link disjoint protection path found" or "No local
     * link disjoint protection path found" when a search fails, "Can't obtain preemptList" when
     * the LSPs in the way cannot be worked out, and two texts in French, in Latin-1: a warning when
     * the number of local backups is not that of the hops, and the figures of a backup that cannot
     * be added (bandwidth, then capacity, primary and whole reservation at level 0 of each link,
     * all in class type 0).
     *
     * @param primarylspId id of the LSP to protect
     * @param backuplspIds ids for the backups, in the order of the result: one per hop for local
     *        backups, one for a global backup; further ids are not used. Without ADDLSP the array
     *        is not examined; null will do
     * @param backupType 1 for a global backup, any other value for local backups
     * @param ADDLSP whether to add the backups to the network
     * @param PREEMPT whether admission may count on less important LSPs giving way
     * @return the node ids of each backup's path; without elements for local backups of an LSP that
     *         crosses no link; null without a live session
     * @throws NoRouteToHostException if there is no such LSP, a backup cannot be found, or a global
     *         one is asked for an LSP that crosses no link
     * @throws AddDBException if a backup cannot be added: its id is negative, too large or in use
     * @throws IllegalArgumentException if backups are to be added and backuplspIds is null or has
     *         fewer elements than there are backups; nothing is added then
     */
    public native int[][] jnicomputeBackupPath(int primarylspId, int[] backuplspIds,
                                               int backupType, boolean ADDLSP, boolean PREEMPT)
            throws NoRouteToHostException, AddDBException;
}
