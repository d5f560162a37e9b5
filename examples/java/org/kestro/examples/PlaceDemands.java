package org.kestro.examples;

import java.io.IOException;
import java.nio.file.Path;
import java.util.ArrayList;
import java.util.Arrays;
import java.util.List;

import org.kestro.repository.model.exception.AddDBException;

/**
 * Places the demands of one or more files on a network and reports where each LSP went, which
 * were refused or preempted, and how full the links are afterwards.
 *
 * <p>The demands are placed in file order. A demand may preempt LSPs of less important levels;
 * what is preempted is gone for good.
 */
public final class PlaceDemands {
    private static final String USAGE = """
            usage: java -cp tarnex.jar:examples.jar org.kestro.examples.PlaceDemands \\
                        NETWORK DEMANDS...

              NETWORK   file with the nodes and links
              DEMANDS   file(s) with the demands, placed in the order given

            The report goes to standard output, the engine's messages about refused demands to
            standard error.""";

    private PlaceDemands() {
    }

    /**
     * Runs the example. The exit code is 0 when all demands were tried, 1 when an input file
     * cannot be used, 2 when the arguments are wrong.
     *
     * @param arguments the network file, then the demand files
     */
    public static void main(String[] arguments) {
        if (arguments.length < 2) {
            System.err.println(USAGE);
            System.exit(2);
        }
        List<Path> files = Arrays.stream(arguments).map(Path::of).toList();
        try {
            Network network = Network.read(files.get(0));
            List<Demand> demands = Demand.readAll(files.subList(1, files.size()), network);
            placeAll(network, demands);
        } catch (InputException e) {
            fail(e.getMessage());
        } catch (IOException e) {
            fail("cannot read the input: " + e);
        } catch (AddDBException e) {
            fail("the engine refused the network");
        } catch (UnsatisfiedLinkError e) {
            fail(e.getMessage());
        }
    }

    private static void placeAll(Network network, List<Demand> demands) throws AddDBException {
        Report report = new Report(System.out, network);
        report.line("%d nodes, %d links, %d demands; bandwidths in Mbit/s%n",
                    network.nodes().size(), network.links().size(), demands.size());
        List<Placement.Outcome> outcomes = new ArrayList<>();
        try (Placement placement = new Placement(network)) {
            for (Demand demand : demands) {
                Placement.Outcome outcome = placement.place(demand);
                report.outcome(outcome);
                outcomes.add(outcome);
            }
            report.links(placement.inPlace());
            report.summary(outcomes, placement.inPlace());
        }
    }

    private static void fail(String message) {
        System.err.println("error: " + message);
        System.exit(1);
    }
}
