package org.kestro.tarnex;

import java.util.Arrays;
import java.util.List;

/** Arguments of a native call, in the order in which the native side reads them. */
final class Arguments {
    private double[] values;
    private int length;

    Arguments(int capacity) {
        values = new double[capacity];
    }

    static Arguments of(Request request) {
        return new Arguments(8 + request.avoid().size()).add(request);
    }

    Arguments add(Request request) {
        return add(request.ingress()).add(request.egress()).add(request.bandwidth())
                .add(request.classType()).add(request.level()).add(request.mayPreempt())
                .add(request.id()).add(request.avoid());
    }

    Arguments add(double value) {
        if (length == values.length) {
            values = Arrays.copyOf(values, 2 * length + 1);
        }
        values[length++] = value;
        return this;
    }

    Arguments add(boolean flag) {
        return add(flag ? 1 : 0);
    }

    /** A list, behind its length. */
    Arguments add(List<Integer> ids) {
        add(ids.size());
        for (int id : ids) {
            add(id);
        }
        return this;
    }

    double[] packed() {
        return length == values.length ? values : Arrays.copyOf(values, length);
    }
}
