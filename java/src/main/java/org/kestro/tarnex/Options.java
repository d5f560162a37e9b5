package org.kestro.tarnex;

import java.util.Objects;

/**
 * Everything that an engine is opened with. Immutable; {@link #builder()} starts from one class
 * type, eight levels, the objective {@link Objective#FORTZ}, capacities tested, refusals explained
 * and preemption free of charge.
 */
public final class Options {
    static final int MAX_CLASS_TYPES = 8;
    static final int MAX_LEVELS = 8;

    private final Builder chosen;

    private Options(Builder builder) {
        chosen = new Builder(builder);
    }

    /** A builder with the defaults. */
    public static Builder builder() {
        return new Builder();
    }

    /** Number of class types in use. */
    public int classTypes() {
        return chosen.classTypes;
    }

    /** Number of preemption levels in use. */
    public int levels() {
        return chosen.levels;
    }

    /** Weights of a path's score. */
    public Weights weights() {
        return chosen.weights;
    }

    /** The values in the order in which the native side reads them. */
    double[] packed() {
        Weights w = chosen.weights;
        Arguments values = new Arguments(12 + MAX_CLASS_TYPES * MAX_LEVELS)
                .add(chosen.classTypes).add(chosen.levels)
                .add(chosen.testsCapacity).add(chosen.explainsRefusals)
                .add(chosen.allowsBackups)
                .add(w.fortz()).add(w.loadBalance()).add(w.load()).add(w.squaredLoad())
                .add(w.utilization()).add(w.squaredUtilization()).add(w.delay());
        for (double[] row : chosen.prices) {
            for (double price : row) {
                values.add(price);
            }
        }
        return values.packed();
    }

    /** Collects options; ranges are checked when the engine is opened. */
    public static final class Builder {
        private int classTypes = 1;
        private int levels = MAX_LEVELS;
        private Weights weights = Weights.of(Objective.FORTZ);
        private boolean testsCapacity = true;
        private boolean explainsRefusals = true;
        private boolean allowsBackups = true;
        private final double[][] prices = new double[MAX_CLASS_TYPES][MAX_LEVELS];

        private Builder() {
        }

        private Builder(Builder other) {
            classTypes = other.classTypes;
            levels = other.levels;
            weights = other.weights;
            testsCapacity = other.testsCapacity;
            explainsRefusals = other.explainsRefusals;
            allowsBackups = other.allowsBackups;
            for (int classType = 0; classType < MAX_CLASS_TYPES; classType++) {
                prices[classType] = other.prices[classType].clone();
            }
        }

        /** Number of class types in use, 1 to 8. */
        public Builder classTypes(int number) {
            classTypes = number;
            return this;
        }

        /** Number of preemption levels in use, 1 to 8. */
        public Builder levels(int number) {
            levels = number;
            return this;
        }

        /** The weights that stand for an objective. */
        public Builder objective(Objective objective) {
            return weights(Weights.of(objective));
        }

        /** Weights of the criteria of a path's score. */
        public Builder weights(Weights weights) {
            this.weights = Objects.requireNonNull(weights, "weights");
            return this;
        }

        /** False: every link has room for every primary. */
        public Builder testsCapacity(boolean tests) {
            testsCapacity = tests;
            return this;
        }

        /** Whether refusals tell the largest bandwidth that fits and the links in the way. */
        public Builder explainsRefusals(boolean explains) {
            explainsRefusals = explains;
            return this;
        }

        /** False: no LSP will have backups, and LSPs on long paths come and go about four times as
         * quickly. */
        public Builder allowsBackups(boolean allows) {
            allowsBackups = allows;
            return this;
        }

        /**
         * Price, 0 or more, of taking a unit of bandwidth from LSPs of a class type and level.
         *
         * @throws IndexOutOfBoundsException if the class type or level is outside 0 to 7
         */
        public Builder preemptionPrice(int classType, int level, double price) {
            prices[Objects.checkIndex(classType, MAX_CLASS_TYPES)]
                  [Objects.checkIndex(level, MAX_LEVELS)] = price;
            return this;
        }

        /** The options as they are now. */
        public Options build() {
            return new Options(this);
        }
    }
}
