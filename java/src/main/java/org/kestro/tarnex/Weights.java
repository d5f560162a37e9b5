package org.kestro.tarnex;

/**
 * Weights of the criteria that a path's score adds up, link by link; pure numbers, finite, 0
 * switches a criterion off.
 *
 * @param fortz the slope of the Fortz-Thorup cost, times the bandwidth
 * @param loadBalance the growth of the variance of utilisation over the network
 * @param load the bandwidth
 * @param squaredLoad the growth of the squared load
 * @param utilization the bandwidth divided by the capacity
 * @param squaredUtilization the growth of the squared utilisation
 * @param delay the growth of 1 / (capacity - load)
 */
public record Weights(double fortz, double loadBalance, double load, double squaredLoad,
                      double utilization, double squaredUtilization, double delay) {
    /** The one weight that stands for an objective. */
    public static Weights of(Objective objective) {
        return switch (objective) {
            case HOPS -> new Weights(0, 0, 1, 0, 0, 0, 0);
            case LOAD -> new Weights(0, 0, 0, 0, 0, 1, 0);
            case BALANCE -> new Weights(0, 1, 0, 0, 0, 0, 0);
            case DELAY -> new Weights(0, 0, 0, 0, 0, 0, 1);
            case FORTZ -> new Weights(1, 0, 0, 0, 0, 0, 0);
        };
    }
}
