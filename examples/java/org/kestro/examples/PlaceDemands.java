package org.kestro.examples;

import java.nio.file.Path;
import java.util.ArrayList;
import java.util.Arrays;
import java.util.List;

import org.kestro.repository.model.exception.AddDBException;

/**
 * Places the demands of one or more files on a network, protects the LSPs with backups, and reports
 * where each LSP and backup went, which were refused or preempted, and how full the links are.
 *
 * <p>The demands are placed in file order. A demand may preempt LSPs of less important levels;
 * what is preempted is gone for good. When all demands are placed, the LSPs that are in place get
 * their backups, the most important LSPs first; backups preempt nothing.
 */
public final class PlaceDemands {
    private static final String USAGE = """
            usage: java -cp tarnex.jar:examples.jar org.kestro.examples.PlaceDemands \\
                        [--dump] NETWORK DEMANDS...

              --dump    also print what the engine knows about the network in the end
              NETWORK   file with the nodes and links
              DEMANDS   file(s) with the demands, placed in the order given

            The report goes to standard output, the engine's messages about refused demands to
            standard error. The engine prints lines of its own to standard output when it finds no
            backup; into a file or a pipe they come last.""";

    private static final String TRAIL_HEADING =
            "Engine's trail of what was refused (expected; newest first):";

    private PlaceDemands() {
    }

    /**
     * Runs the example. The exit code is 0 when all demands were tried, 1 when an input file
     * cannot be used, 2 when the arguments are wrong.
     *
     * @param arguments the network file, then the demand files; before them "--dump" or nothing
     */
    public static void main(String[] arguments) {
        boolean dump = arguments.length > 0 && arguments[0].equals("--dump");
        List<Path> files = Arrays.stream(arguments).skip(dump ? 1 : 0).map(Path::of).toList();
        if (files.size() < 2) {
            System.err.println(USAGE);
            System.exit(2);
        }
        try {
            Network network = Network.read(files.get(0));
            List<Demand> demands = Demand.readAll(files.subList(1, files.size()), network);
            placeAll(network, demands, dump);
        } catch (InputException e) {
            fail(e.getMessage());
        } catch (AddDBException e) {
            fail("the engine refused " + e.getMessage()
                 + "; ids index tables, keep them small");
        } catch (UnsatisfiedLinkError e) {
            fail(e.getMessage());
        }
    }

    private static void placeAll(Network network, List<Demand> demands, boolean dump)
            throws AddDBException {
        Report report = new Report(System.out, network);
        report.line("%d nodes, %d links, %d demands; bandwidths in Mbit/s%n",
                    network.nodes().size(), network.links().size(), demands.size());
        List<Placement.Outcome> outcomes = new ArrayList<>();
        int lastId = demands.stream().mapToInt(Demand::id).max().orElse(0);
        try (Placement placement = new Placement(network, lastId + 1)) {
            for (Demand demand : demands) {
                Placement.Outcome outcome = placement.place(demand);
                report.outcome(outcome);
                outcomes.add(outcome);
            }
            System.err.println("Engine's own lines while it looks for backups (expected):");
            List<Placement.Protection> protections = placement.protectAll();
            report.protections(protections);
            List<Backup> backups = protections.stream().flatMap(p -> p.backups().stream()).toList();
            BackupBandwidth bandwidth = new BackupBandwidth(network, placement.inPlace(), backups);
            report.links(placement.inPlace(), bandwidth);
            report.sharing(bandwidth);
            report.summary(outcomes, protections);
            if (dump) {
                placement.dump();
            }
            if (outcomes.stream().anyMatch(o -> o instanceof Placement.Refused)
                    || protections.stream().anyMatch(p -> p.backups().isEmpty())) {
                System.err.println(TRAIL_HEADING); // the engine's session ends with its trail
            }
        }
    }

    private static void fail(String message) {
        System.err.println("error: " + message);
        System.exit(1);
    }
}
