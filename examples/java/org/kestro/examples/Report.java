package org.kestro.examples;

import java.io.PrintStream;
import java.util.Collection;
import java.util.HashMap;
import java.util.List;
import java.util.Locale;
import java.util.Map;
import java.util.stream.Collectors;

import org.kestro.examples.Placement.Lsp;

/** Prints what became of the demands. All bandwidths are in Mbit/s. */
final class Report {
    private final PrintStream out;
    private final Network network;

    Report(PrintStream out, Network network) {
        this.out = out;
        this.network = network;
    }

    /** One line per demand: where it went and whom it pushed aside, or why it was refused. */
    void outcome(Placement.Outcome outcome) {
        if (outcome instanceof Placement.Placed placed) {
            line("%s  %s", describe(placed.lsp().demand()),
                 String.join(" > ", placed.lsp().path()));
            for (Lsp lost : placed.preempted()) {
                Demand demand = lost.demand();
                line("          preempts %d (%s, %.0f) from %s to %s", demand.id(), kind(demand),
                     demand.bandwidth(), demand.ingress(), demand.egress());
            }
        } else if (outcome instanceof Placement.Refused refused) {
            line("%s  REFUSED from %s to %s: %s", describe(refused.demand()),
                 refused.demand().ingress(), refused.demand().egress(), refused.reason());
        }
    }

    private String describe(Demand demand) {
        return format("%6d  %-20s %7.0f", demand.id(), kind(demand), demand.bandwidth());
    }

    private String kind(Demand demand) {
        return network.classes().get(demand.classType()) + "/"
                + network.levels().get(demand.level());
    }

    /** One table per class: what each link can carry, and what it carries at each level. */
    void links(Collection<Lsp> inPlace) {
        for (int oa = 0; oa < network.classes().size(); oa++) {
            line("%nLinks, class %s (Mbit/s)", network.classes().get(oa));
            String levels = network.levels().stream().map(name -> format("%9s", name))
                                   .collect(Collectors.joining());
            line("  %4s  %-13s %-13s %9s%s %9s %6s", "id", "from", "to", "capacity", levels,
                 "reserved", "used");
            Map<List<String>, double[]> reserved = reservations(inPlace, oa);
            for (Network.Link link : network.links()) {
                linkRow(link, link.capacity()[oa], reserved.get(ends(link)));
            }
        }
    }

    private void linkRow(Network.Link link, double capacity, double[] reserved) {
        StringBuilder levels = new StringBuilder();
        double total = 0;
        for (double atLevel : reserved) {
            levels.append(format("%9.0f", atLevel));
            total += atLevel;
        }
        double utilisation = capacity > 0 ? 100 * total / capacity : 0;
        line("  %4d  %-13s %-13s %9.0f%s %9.0f %5.1f%%", link.id(), link.from(), link.to(),
             capacity, levels, total, utilisation);
    }

    /** Bandwidth reserved in one class, per link (named by its two ends) and level. */
    private Map<List<String>, double[]> reservations(Collection<Lsp> inPlace, int classType) {
        Map<List<String>, double[]> reserved = new HashMap<>();
        for (Network.Link link : network.links()) {
            reserved.put(ends(link), new double[network.levels().size()]);
        }
        for (Lsp lsp : inPlace) {
            Demand demand = lsp.demand();
            if (demand.classType() == classType) {
                for (int hop = 0; hop + 1 < lsp.path().size(); hop++) {
                    reserved.get(lsp.path().subList(hop, hop + 2))[demand.level()]
                            += demand.bandwidth();
                }
            }
        }
        return reserved;
    }

    private static List<String> ends(Network.Link link) {
        return List.of(link.from(), link.to());
    }

    /** How many demands of each level got through, and how much bandwidth they have. */
    void summary(List<Placement.Outcome> outcomes, Collection<Lsp> inPlace) {
        line("%nSummary%n  %-10s %8s %8s %10s %9s %16s", "level", "demands", "refused",
             "preempted", "in place", "Mbit/s in place");
        for (int level = 0; level < network.levels().size(); level++) {
            int demands = 0;
            int refused = 0;
            for (Placement.Outcome outcome : outcomes) {
                boolean refusal = outcome instanceof Placement.Refused;
                if (demand(outcome).level() == level) {
                    demands++;
                    refused += refusal ? 1 : 0;
                }
            }
            int carried = 0;
            double bandwidth = 0;
            for (Lsp lsp : inPlace) {
                if (lsp.demand().level() == level) {
                    carried++;
                    bandwidth += lsp.demand().bandwidth();
                }
            }
            line("  %-10s %8d %8d %10d %9d %16.0f", network.levels().get(level), demands, refused,
                 demands - refused - carried, carried, bandwidth);
        }
    }

    private static Demand demand(Placement.Outcome outcome) {
        return outcome instanceof Placement.Placed placed ? placed.lsp().demand()
                : ((Placement.Refused) outcome).demand();
    }

    void line(String format, Object... arguments) {
        out.println(format(format, arguments));
    }

    private static String format(String format, Object... arguments) {
        return String.format(Locale.ROOT, format, arguments);
    }
}
