/** Path computation for MPLS networks with DiffServ classes. */
module org.kestro.tarnex {
    exports org.kestro.tarnex;
    exports org.kestro.repository.TARNEX;
    exports org.kestro.repository.model.exception;
}
