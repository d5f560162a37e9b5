package org.kestro.examples;

import java.nio.file.Path;
import java.util.Arrays;
import java.util.List;
import org.kestro.tarnex.Engine;
import org.kestro.tarnex.Objective;
import org.kestro.tarnex.Options;
import org.kestro.tarnex.PlaceResult;
import org.kestro.tarnex.Request;
import org.kestro.tarnex.Scheme;

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
                        NETWORK DEMANDS...

              NETWORK   file with the nodes and links
              DEMANDS   file(s) with the demands, placed in the order given""";

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
            placeAll(network, Demand.readAll(files.subList(1, files.size()), network));
        } catch (InputException | IllegalArgumentException | UnsatisfiedLinkError e) {
            System.err.println("error: " + e.getMessage());
            System.exit(1);
        }
    }

    private static void placeAll(Network network, List<Demand> demands) {
        Options options = Options.builder().classTypes(network.classes().size())
                .levels(network.levels().size()).objective(Objective.FORTZ).build();
        try (Engine engine = new Engine(options)) {
            network.nodes().values().forEach(engine::addNode);
            for (Network.Link link : network.links()) {
                engine.addLink(link.id(), network.nodes().get(link.from()),
                               network.nodes().get(link.to()), link.capacity());
            }
            Report report = new Report(System.out, network, engine, demands);
            for (Demand demand : demands) {
                PlaceResult result = engine.place(new Request(
                        network.nodes().get(demand.ingress()),
                        network.nodes().get(demand.egress()), demand.bandwidth())
                        .classType(demand.classType()).level(demand.level()).mayPreempt(true)
                        .id(demand.id()));
                report.placed(demand, result);
            }
            report.protection();
            for (int level = 0; level < network.levels().size(); level++) {
                for (Demand demand : demands) {
                    if (demand.level() == level && engine.has(demand.id())) {
                        report.protectedBy(demand,
                                           engine.protect(demand.id(), Scheme.LOCAL_OR_GLOBAL));
                    }
                }
            }
            report.links();
        }
    }
}
