/**
 * Path computation for MPLS networks with DiffServ classes: an {@link org.kestro.tarnex.Engine} is
 * opened from {@link org.kestro.tarnex.Options}, what is refused is a
 * {@link org.kestro.tarnex.Refusal}, a value like any other, and only wrong use throws.
 *
 * <p>No parameter and no result is null unless its description says so. Ids of nodes, links and
 * LSPs are 0 or more, chosen by the caller and best dense from 0. Bandwidths and capacities share
 * one unit of the caller's choice. Lists in results cannot be changed.
 */
package org.kestro.tarnex;
