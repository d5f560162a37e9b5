package org.kestro.tarnex;

import java.lang.ref.Cleaner;
import java.lang.ref.Reference;
import java.util.List;
import java.util.Optional;
import java.util.OptionalInt;
import org.kestro.tarnex.internal.NativeLibrary;

/**
 * One network with its LSPs, and the books about what they reserve.
 *
 * <pre>{@code
 * try (Engine engine = new Engine(Options.builder().objective(Objective.HOPS).build())) {
 *     engine.addNode(0);
 *     engine.addNode(1);
 *     engine.addLink(0, 0, 1, 1000.0);
 *     PlaceResult result = engine.place(new Request(0, 1, 250.0));
 *     if (result instanceof Placement placed) {
 *         System.out.println(placed.path().nodes());
 *     } else if (result instanceof Refusal refusal) {
 *         System.out.println(refusal.sentence());
 *     }
 * }
 * }</pre>
 *
 * <p>What cannot be done is a {@link Refusal} and changes nothing. Wrong use (an id that is taken,
 * or unknown where one must exist, a level out of range, a bandwidth that is no number) throws
 * {@link IllegalArgumentException}, null {@link NullPointerException}, a call on a closed engine
 * {@link IllegalStateException}; none of them changes anything. Nothing is printed.
 *
 * <p>Engines may be used from any thread: calls take turns. One that is forgotten without
 * {@link #close} is closed some time after it became unreachable, with a warning in the log of
 * {@link System.Logger} {@code org.kestro.tarnex}.
 */
public final class Engine implements AutoCloseable {
    static {
        NativeLibrary.load();
    }

    private static final Cleaner CLEANER = Cleaner.create();

    private final Options options;
    private final Handle handle;
    private final Cleaner.Cleanable cleanable;

    /** The native engine, which must not keep the Java object reachable. */
    private static final class Handle implements Runnable {
        private long value = -1; // as long as it is not open
        private volatile boolean isClosedByCaller;

        @Override
        public void run() {
            if (Native.close(value) && !isClosedByCaller) {
                System.getLogger("org.kestro.tarnex").log(System.Logger.Level.WARNING,
                        "An engine was never closed and has been released now.");
            }
        }
    }

    /**
     * Opens an engine with an empty network.
     *
     * @throws IllegalArgumentException if an option is out of range
     */
    public Engine(Options options) {
        this.options = options;
        double[] packed = options.packed();
        handle = new Handle();
        cleanable = CLEANER.register(this, handle); // first: it may find no memory
        handle.value = Native.open(packed);
    }

    /** Releases the network; a second call does nothing. */
    @Override
    public void close() {
        handle.isClosedByCaller = true;
        cleanable.clean();
    }

    /** What the engine was opened with. */
    public Options options() {
        return options;
    }

    /** Adds a node with an id not in use. */
    public void addNode(int node) {
        call(Native.ADD_NODE, new Arguments(1).add(node));
    }

    /**
     * Adds a directed link; at most one leads from a node to another.
     *
     * @param link its id, not in use
     * @param from id of the node where it starts
     * @param to id of the node where it ends
     * @param capacity per class type, finite and 0 or more; those that are missing are 0
     */
    public void addLink(int link, int from, int to, double... capacity) {
        Arguments arguments = new Arguments(3 + capacity.length).add(link).add(from).add(to);
        for (double value : capacity) {
            arguments.add(value);
        }
        call(Native.ADD_LINK, arguments);
    }

    /** Removes a link with the LSPs that use it, which are returned by id, backups behind their
     * primaries. */
    public List<Lsp> removeLink(int link) {
        return List.copyOf(call(Native.REMOVE_LINK, new Arguments(1).add(link)).lsps());
    }

    /** Removes a node with its links; as {@link #removeLink}. */
    public List<Lsp> removeNode(int node) {
        return List.copyOf(call(Native.REMOVE_NODE, new Arguments(1).add(node)).lsps());
    }

    /** Computes the path of least score that has room, and sets the LSP up; LSPs that have to give
     * way are removed with their backups. */
    public PlaceResult place(Request request) {
        return call(Native.PLACE, Arguments.of(request)).placeResult();
    }

    /**
     * Places many requests, one after the other, in one call.
     *
     * @param requests all of them name their ids, or none does; wrong use by any is found before the
     *        first is placed
     * @return a result for each
     * @throws OutOfMemoryError if results do not fit into memory; some LSPs are placed then
     */
    public List<PlaceResult> placeAll(List<Request> requests) {
        Arguments arguments = new Arguments(8 * requests.size());
        requests.forEach(arguments::add);
        Answer answer = call(Native.PLACE_ALL, arguments, requests.size());
        return requests.stream().map(request -> answer.placeResult()).toList();
    }

    /** As {@link #place}, but nothing changes. */
    public PlaceResult propose(Request request) {
        return call(Native.PROPOSE, Arguments.of(request)).placeResult();
    }

    /** Computes backups for a primary and sets them up, all or none, under ids never used. */
    public ProtectResult protect(int primary, Scheme scheme) {
        return protect(primary, scheme, -1);
    }

    /** The same with the ids from {@code firstId} on; -1: the next ones never used. */
    public ProtectResult protect(int primary, Scheme scheme, int firstId) {
        return call(Native.PROTECT, new Arguments(4).add(primary).add(scheme.ordinal())
                .add(firstId).add(false)).protectResult();
    }

    /** The same with backups that carry a part of the primary's bandwidth. */
    public ProtectResult protect(int primary, Scheme scheme, int firstId, double bandwidth) {
        return call(Native.PROTECT, new Arguments(5).add(primary).add(scheme.ordinal())
                .add(firstId).add(true).add(bandwidth)).protectResult();
    }

    /** Sets up a primary on a given path, which passes no node twice; the request's ends are taken
     * from the path. */
    public PlaceResult add(Request request, List<Integer> path) {
        return call(Native.ADD_PRIMARY, Arguments.of(request).add(path)).placeResult();
    }

    /**
     * Sets up a given backup of a primary.
     *
     * @param primary id of the LSP that it protects
     * @param kind a local or a global backup
     * @param path ids of its nodes: a local one starts at the node before the link it protects, a
     *        global one ends at the primary's egress
     * @param id id for the backup; -1: the next one never used
     */
    public BackupResult addBackup(int primary, LspKind kind, List<Integer> path, int id) {
        return call(Native.ADD_BACKUP, new Arguments(3 + path.size()).add(primary)
                .add(kind.ordinal()).add(id).add(path)).backupResult();
    }

    /** Removes an LSP, a primary with its backups. */
    public void remove(int lsp) {
        call(Native.REMOVE, new Arguments(1).add(lsp));
    }

    /** Why a request would get no path, in full; empty when it would get one. */
    public Optional<Refusal> explain(Request request) {
        return refusal(call(Native.EXPLAIN, Arguments.of(request)));
    }

    /** Why a primary would get no such backups; empty when it would. */
    public Optional<Refusal> explainProtection(int primary, Scheme scheme) {
        return refusal(call(Native.EXPLAIN_PROTECTION,
                            new Arguments(2).add(primary).add(scheme.ordinal())));
    }

    /**
     * Numbers of what an engine holds at one moment.
     *
     * @param nodes number of nodes
     * @param links number of links
     * @param lsps number of LSPs, backups among them
     */
    public record Counts(int nodes, int links, int lsps) {
    }

    /** Numbers of nodes, links and LSPs. */
    public Counts counts() {
        Answer answer = call(Native.COUNTS, new Arguments(0));
        return new Counts(answer.integer(), answer.integer(), answer.integer());
    }

    /** Ids of all nodes, ascending. */
    public List<Integer> nodes() {
        return List.copyOf(call(Native.NODES, new Arguments(0)).ids());
    }

    /** What all links carry. */
    public LinkTable links() {
        return new LinkTable(call(Native.USES, new Arguments(0)).values());
    }

    /** Ids of all LSPs, backups among them, ascending. */
    public List<Integer> lsps() {
        return List.copyOf(call(Native.LSPS, new Arguments(0)).ids());
    }

    /** Id of the link from a node to another; empty when there is none. */
    public OptionalInt linkBetween(int from, int to) {
        int link = call(Native.LINK_BETWEEN, new Arguments(2).add(from).add(to)).integer();
        return link < 0 ? OptionalInt.empty() : OptionalInt.of(link);
    }

    /** What a link carries. */
    public LinkUse use(int link) {
        return call(Native.USE, new Arguments(1).add(link)).linkUse();
    }

    /** Ids of the LSPs whose path uses a link: least important level first, then larger bandwidth,
     * then smaller id. */
    public List<Integer> lspsOn(int link) {
        return List.copyOf(call(Native.LSPS_ON, new Arguments(1).add(link)).ids());
    }

    /** Whether there is an LSP with this id. */
    public boolean has(int lsp) {
        return call(Native.HAS, new Arguments(1).add(lsp)).flag();
    }

    /** An LSP in full. */
    public Lsp lsp(int lsp) {
        return call(Native.LSP, new Arguments(1).add(lsp)).lsp();
    }

    /** Ids of the backups of a primary, along its path. */
    public List<Integer> backupsOf(int primary) {
        return List.copyOf(call(Native.BACKUPS_OF, new Arguments(1).add(primary)).ids());
    }

    /** The engine's messages about the last call that changes or computes something, the cause
     * last, one per line; empty when there is nothing to say. */
    public String trail() {
        return call(Native.TRAIL, new Arguments(0)).text();
    }

    /** Bytes in the tables of all engines in this process, modulo 2^32. */
    public static long countedMemory() {
        return Native.countedMemory();
    }

    private static Optional<Refusal> refusal(Answer answer) {
        return answer.flag() ? Optional.empty() : Optional.of(answer.refusal());
    }

    private Answer call(int operation, Arguments arguments) {
        return call(operation, arguments, 1);
    }

    private Answer call(int operation, Arguments arguments, int mostTexts) {
        String[] texts = new String[mostTexts];
        try {
            return new Answer(Native.call(handle.value, operation, arguments.packed(), texts),
                              texts);
        } finally {
            Reference.reachabilityFence(this);
        }
    }
}
