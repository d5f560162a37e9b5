package org.kestro.examples;

import java.io.PrintStream;
import java.util.List;
import java.util.Locale;
import java.util.Map;
import java.util.function.Function;
import java.util.stream.Collectors;
import org.kestro.tarnex.Engine;
import org.kestro.tarnex.LinkTable;
import org.kestro.tarnex.Lsp;
import org.kestro.tarnex.PlaceResult;
import org.kestro.tarnex.Placement;
import org.kestro.tarnex.ProtectResult;
import org.kestro.tarnex.Protection;
import org.kestro.tarnex.Refusal;

/** What is printed of it all; bandwidths in Mbit/s. */
final class Report {
    private final PrintStream out;
    private final Network network;
    private final Engine engine;
    private final Map<Integer, Demand> demands; // by id
    private final Map<Integer, String> names; // of nodes, by id
    private int placed;

    Report(PrintStream out, Network network, Engine engine, List<Demand> demands) {
        this.out = out;
        this.network = network;
        this.engine = engine;
        this.demands = demands.stream().collect(Collectors.toMap(Demand::id, Function.identity()));
        names = network.nodes().entrySet().stream()
                .collect(Collectors.toMap(Map.Entry::getValue, Map.Entry::getKey));
        line("%d nodes, %d links, %d demands; bandwidths in Mbit/s%n", network.nodes().size(),
             network.links().size(), demands.size());
    }

    /** Tells where a demand went, or why it did not. */
    void placed(Demand demand, PlaceResult result) {
        if (result instanceof Refusal refusal) {
            demandLine(demand, "REFUSED " + refusal.sentence());
        } else if (result instanceof Placement placement) {
            placed++;
            demandLine(demand, along(placement.path().nodes()));
            for (Lsp victim : placement.victims()) {
                line("          preempts %d (%s, %.0f)", victim.id(),
                     kindOf(demands.get(victim.id())), victim.bandwidth());
            }
        }
    }

    /** Begins the part about backups. */
    void protection() {
        line("%nProtection: local backups, a global one where there are none");
    }

    /** Tells the backups of an LSP, or why there are none. */
    void protectedBy(Demand demand, ProtectResult result) {
        if (result instanceof Refusal refusal) {
            demandLine(demand, "UNPROTECTED " + refusal.sentence());
        } else if (result instanceof Protection protection) {
            demandLine(demand, along(engine.lsp(demand.id()).path().nodes()));
            for (Lsp backup : protection.backups()) {
                line("          %d for %d links, %d nodes: %s", backup.id(),
                     backup.protects().links().size(), backup.protects().nodes().size(),
                     along(backup.path().nodes()));
            }
        }
    }

    /** Tells how full links are, and what it all adds up to. */
    void links() {
        line("%nLinks: capacity, reserved for LSPs, with backups%n");
        LinkTable links = engine.links();
        double primaries = 0;
        double totals = 0;
        for (int link = 0; link < links.size(); link++) {
            for (int classType = 0; classType < network.classes().size(); classType++) {
                double primary = 0;
                double total = 0;
                for (int level = 0; level < network.levels().size(); level++) {
                    primary += links.primary(link, classType, level);
                    total += links.total(link, classType, level);
                }
                line("  %-32s %-12s %6.0f %6.0f %6.0f",
                     names.get(links.from(link)) + " > " + names.get(links.to(link)),
                     network.classes().get(classType), links.capacity(link, classType), primary,
                     total);
                primaries += primary;
                totals += total;
            }
        }
        long inPlace = demands.keySet().stream().filter(engine::has).count();
        line("%n%d of %d demands were placed, %d are in place, with %d backups", placed,
             demands.size(), inPlace, engine.counts().lsps() - inPlace);
        line("LSPs reserve %.0f Mbit/s, backups that share %.0f", primaries, totals - primaries);
    }

    private void demandLine(Demand demand, String outcome) {
        line("%6d  %-20s %6.0f  %s", demand.id(), kindOf(demand), demand.bandwidth(), outcome);
    }

    private String kindOf(Demand demand) {
        return network.classes().get(demand.classType()) + "/"
               + network.levels().get(demand.level());
    }

    private String along(List<Integer> nodes) {
        return nodes.stream().map(names::get).collect(Collectors.joining(" > "));
    }

    private void line(String format, Object... arguments) {
        out.println(String.format(Locale.ROOT, format, arguments));
    }
}
