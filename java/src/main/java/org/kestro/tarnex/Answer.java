package org.kestro.tarnex;

import java.util.ArrayList;
import java.util.List;
import java.util.OptionalDouble;
import java.util.function.Supplier;

/** What a native call answered, read in the order in which the native side wrote it. */
final class Answer {
    private static final LspKind[] KINDS = LspKind.values();
    private static final Reason[] REASONS = Reason.values();

    private final double[] values;
    private final String[] texts;
    private int next;
    private int nextText;

    Answer(double[] values, String[] texts) {
        this.values = values;
        this.texts = texts;
    }

    double number() {
        return values[next++];
    }

    int integer() {
        return (int) number();
    }

    boolean flag() {
        return number() != 0;
    }

    String text() {
        return texts[nextText++];
    }

    /** Everything as it came. */
    double[] values() {
        return values;
    }

    <T> List<T> list(Supplier<T> item) {
        int size = integer();
        List<T> items = new ArrayList<>(size);
        for (int i = 0; i < size; i++) {
            items.add(item.get());
        }
        return items;
    }

    List<Integer> ids() {
        return list(this::integer);
    }

    Path path() {
        return new Path(ids(), ids());
    }

    List<Lsp> lsps() {
        return list(this::lsp);
    }

    Lsp lsp() {
        return new Lsp(integer(), KINDS[integer()], integer(), integer(), number(), path(),
                       new Protects(integer(), ids(), ids()));
    }

    PlaceResult placeResult() {
        return flag() ? placement() : refusal();
    }

    ProtectResult protectResult() {
        return flag() ? new Protection(lsps()) : refusal();
    }

    BackupResult backupResult() {
        return flag() ? lsp() : refusal();
    }

    Placement placement() {
        int id = integer();
        Path path = path();
        double score = number();
        return new Placement(id, path, Double.isNaN(score) ? OptionalDouble.empty()
                                                           : OptionalDouble.of(score), lsps());
    }

    Refusal refusal() {
        return new Refusal(REASONS[integer()], text(), number(),
                           list(() -> new Refusal.LinkInTheWay(integer(), number())));
    }

    LinkUse linkUse() {
        return new LinkUse(integer(), integer(), integer(), row(Options.MAX_CLASS_TYPES), table(),
                           table(), table());
    }

    private double[] row(int length) {
        double[] row = new double[length];
        for (int i = 0; i < length; i++) {
            row[i] = number();
        }
        return row;
    }

    private double[][] table() {
        double[][] rows = new double[Options.MAX_CLASS_TYPES][];
        for (int i = 0; i < rows.length; i++) {
            rows[i] = row(Options.MAX_LEVELS);
        }
        return rows;
    }
}
