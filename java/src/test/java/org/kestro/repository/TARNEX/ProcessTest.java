package org.kestro.repository.TARNEX;

import static org.junit.jupiter.api.Assertions.assertEquals;

import java.util.List;
import java.util.Locale;
import org.junit.jupiter.api.Test;
import org.kestro.ProcessRunner;

/** What a whole process shows: standard output and error. */
class ProcessTest extends ProcessRunner {
    @Test
    void dumpShowsNodesLinksAndReservations() throws Exception {
        run("dump");
        assertEquals("Printing info about nodes ...\n" + "-".repeat(29) + "\n"
                     + node(0, "1 ", "1 2 ") + node(1, "0 2 ", "0 ") + node(2, "0 ", "1 ")
                     + node(5, "", "")
                     + "\nPrinting info about links ...\n" + "-".repeat(29) + "\n"
                     + link("0-1 (id = 0)", "9 4 ", 10, 5.5, 5.5, 4, 0, 0)
                     + link("0-2 (id = 1)", "7 ", 10, 0, 2.5, 4, 0, 0)
                     + link("1-0 (id = 3)", "", 10.5, 0, 3, 4, 0, 0.5)
                     + link("2-1 (id = 2)", "7 8 ", 10, 0, 2.5, 4, 4, 4), out);
        assertEquals("", err);
    }

    private static String node(int id, String incoming, String outgoing) {
        return "Node id : " + id + "\n" + "-".repeat(13) + "\nIncoming neighboors : \n" + incoming
                + "\nOutgoing neighboors : \n" + outgoing + "\n";
    }

    /** Figures: capacity, primary and whole reservation of each class type; the rest is 0. */
    private static String link(String ends, String lsps, double... figures) {
        StringBuilder text = new StringBuilder("Link " + ends + "\n" + "-".repeat(23) + "\n"
                + "\tList of LSPs\n\t------------\n" + lsps + "\n\n\tLink-state\n\t----------\n");
        for (int i = 0; i < 3 * 8; i++) {
            text.append(String.format(Locale.ROOT, "\t%s[%d] = %.6f\n",
                                      List.of("Capacity", "pbw", "rbw").get(i % 3), i / 3,
                                      i < figures.length ? figures[i] : 0));
        }
        return text + "\n\n";
    }

    @Test
    void killPrintsTheTrailOfFailuresNewestFirst() throws Exception {
        run("trail");
        assertEquals("AddDBException null\n".repeat(9)
                     + "NoRouteToHostException null\n".repeat(3), out);
        assertEquals("""
                Impossible to compute global backup paths in jni_interface
                Cannot protect a path without link in computation/backup/backup
                Impossible to compute local backup paths in jni_interface
                Cannot find lsp ID 3 in computation/backup/backup
                Impossible to compute Path in jni_interface
                Unable to update requested path in computation/primary/primaryPath
                Destination unreachable in computation/primary/primaryPath
                Impossible to add PRIMARY LSP in jni_interface
                Unable to insert LSP in the general LSP container in database/database
                Trying to add an LSP with a reserved ID in database/database_util
                Impossible to remove Link in jni_interface
                Link doesn't exist or database unconsistancy in database/database
                Impossible to remove Node in jni_interface
                Trying to remove an inexistent node in database/database
                Impossible to remove LSP in jni_interface
                Trying to remove inexistent LSP (id = 3) in database/database
                Lsp ID: 8, Request: 11.000000

                Impossible to add BACKUP LSP (computed by another algorithm) in jni_interface
                LSP refused by the predicate in database/database
                Lsp ID: 8, Request: 1.000000

                Impossible to find PRIMARY LSP in jni_interface
                Lsp ID: 7, Request: 8.500000

                Impossible to add PRIMARY LSP (computed by another algorithm) in jni_interface
                LSP refused by the predicate in database/database
                Impossible to add Link in jni_interface
                Source or destination node doesn't exist in database/database
                Impossible to init a Node in jni_interface
                Unable to insert a new node in the general node container in database/database
                Trying to add a node with a reserved ID in database/database_util
                """.replaceAll("(?m)^(?=.)", "[CRITICAL] ")
                + "ERROR, call to killTarnex before initTarnex\n",
                err.replaceAll(" at line [0-9]+\n", "\n"));
    }

    @Test
    void backupsThatCannotBeFoundOrAddedAreExplained() throws Exception {
        run("backups");
        assertEquals("AddDBException null\ndone\nAddDBException null\n"
                     + "NoRouteToHostException null\n".repeat(2) + "done\nSwitching from node to "
                     + "link protection for lsp number: 7\nOups ... no path found ...\n", out);
        assertEquals("""
                Backup global non ajout@ pour primaire 5, valeur de la bande passante: 2.500000:\s
                Valeur de la capacit@ du lien 1 - 4: 9.000000, Valeur de la bande passante \
                r@serv@e P0: 0.000000, PetB0: 1.000000
                Valeur de la capacit@ du lien 4 - 2: 10.000000, Valeur de la bande passante \
                r@serv@e P0: 7.500000, PetB0: 10.000000
                \s
                No local link disjoint protection path found
                No end to end link disjoint protection path found
                Pas assez de lsps de backups locaux pour la taille du lsp!
                """.replace('@', '\u00e9'), err); // a byte of Latin-1 is a character here
    }

    private void run(String scenario) throws Exception {
        java(List.of(JAR, codeOf(Scenarios.class)), List.of(Scenarios.class.getName(), scenario));
    }
}
