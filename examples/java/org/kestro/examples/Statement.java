package org.kestro.examples;

import java.io.IOException;
import java.nio.charset.CharacterCodingException;
import java.nio.file.AccessDeniedException;
import java.nio.file.Files;
import java.nio.file.NoSuchFileException;
import java.nio.file.Path;
import java.util.ArrayList;
import java.util.List;

/**
 * One line of an input file, split into words. Comments (from a {@code #} to the end of the line)
 * and blank lines are no statements.
 *
 * @param file the file, for error messages
 * @param line line number, counted from 1
 * @param words the words of the line, at least one; the first is the keyword
 */
record Statement(Path file, int line, List<String> words) {

    /** Reads all statements of a UTF-8 file, in order. */
    static List<Statement> readAll(Path file) throws InputException {
        List<String> lines = readLines(file);
        List<Statement> statements = new ArrayList<>();
        for (int i = 0; i < lines.size(); i++) {
            String text = lines.get(i).replaceFirst("#.*", "").strip();
            if (!text.isEmpty()) {
                statements.add(new Statement(file, i + 1, List.of(text.split("\\s+"))));
            }
        }
        return statements;
    }

    private static List<String> readLines(Path file) throws InputException {
        if (Files.isDirectory(file)) {
            throw new InputException(file, "is a directory");
        }
        try {
            return Files.readAllLines(file);
        } catch (NoSuchFileException e) {
            throw new InputException(file, "no such file");
        } catch (AccessDeniedException e) {
            throw new InputException(file, "permission denied");
        } catch (CharacterCodingException e) {
            throw new InputException(file, "is not UTF-8 text");
        } catch (IOException e) {
            throw new InputException(file, e.toString());
        }
    }

    String keyword() {
        return words.get(0);
    }

    String word(int index) {
        return words.get(index);
    }

    /** The words after the keyword. */
    List<String> arguments() {
        return words.subList(1, words.size());
    }

    /** Checks the number of words against the names of the arguments. */
    void expectArguments(String... names) throws InputException {
        if (words.size() != names.length + 1) {
            throw error("expected: " + keyword() + " " + String.join(" ", names));
        }
    }

    /** The word at a position as an id: an integer, 0 or more. */
    int id(int index) throws InputException {
        try {
            int id = Integer.parseInt(word(index));
            if (id >= 0) {
                return id;
            }
        } catch (NumberFormatException e) {
            // reported below, like a negative number
        }
        throw error("'" + word(index) + "' is not an id (an integer, 0 or more)");
    }

    /** The word at a position as a bandwidth in Mbit/s: a finite number, 0 or more. */
    double bandwidth(int index) throws InputException {
        try {
            double bandwidth = Double.parseDouble(word(index));
            if (bandwidth >= 0 && Double.isFinite(bandwidth)) {
                return bandwidth;
            }
        } catch (NumberFormatException e) {
            // reported below, like a negative number
        }
        throw error("'" + word(index) + "' is not a bandwidth (a number, 0 or more)");
    }

    /** The position of a word in a list of names. */
    int oneOf(List<String> names, int index, String what) throws InputException {
        int position = names.indexOf(word(index));
        if (position < 0) {
            throw error("no " + what + " is called '" + word(index) + "'");
        }
        return position;
    }

    InputException error(String message) {
        return new InputException(file, line, message);
    }
}
