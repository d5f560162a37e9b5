package org.kestro.tarnex;

import static org.junit.jupiter.api.Assertions.assertEquals;
import static org.junit.jupiter.api.Assertions.assertTrue;

import java.nio.file.Files;
import java.nio.file.Path;
import java.util.List;
import java.util.regex.Matcher;
import java.util.regex.Pattern;
import java.util.stream.Stream;
import javax.tools.ToolProvider;
import org.junit.jupiter.api.Test;
import org.junit.jupiter.params.ParameterizedTest;
import org.junit.jupiter.params.provider.ValueSource;
import org.kestro.ProcessRunner;

/** What the documentation shows compiles, runs and prints what it says; and nothing else does. */
class DocumentationTest extends ProcessRunner {
    /** Compiles a class from text and runs it. */
    private void runText(String name, String code) throws Exception {
        Path source = Files.writeString(temp.resolve(name + ".java"), code);
        compile(source.toString());
        java(List.of(JAR, temp), List.of(name), "-Djava.library.path=" + JAR.getParent());
        assertEquals("", err);
    }

    private void compile(String... sources) {
        List<String> options = List.of("-Xlint:all", "-Werror", "--release", "17", "-proc:none",
                                       "-cp", JAR.toString(), "-d", temp.toString());
        assertEquals(0, ToolProvider.getSystemJavaCompiler().run(
                null, null, null,
                Stream.concat(options.stream(), Stream.of(sources)).toArray(String[]::new)));
    }

    @ParameterizedTest
    @ValueSource(strings = {"README.md", "docs/moving.md"})
    void programs(String page) throws Exception {
        Matcher block = Pattern.compile("(?s)```java\n(.*?)```(.*)")
                .matcher(Files.readString(PROJECT.resolve(page)));
        assertTrue(block.find());
        runText("First", block.group(1));
        assertTrue(!out.isEmpty() && block.group(2).contains(out.strip()), out);
    }

    @Test
    void javadoc() throws Exception {
        Path source = PROJECT.resolve("java/src/main/java/org/kestro/tarnex/Engine.java");
        Matcher code = Pattern.compile("(?s)<pre>\\{@code\n(.*?)\\}</pre>")
                .matcher(Files.readString(source));
        assertTrue(code.find());
        runText("Example", "import org.kestro.tarnex.*;\npublic class Example {\n"
                + "public static void main(String[] arguments) {\n"
                + code.group(1).replaceAll("(?m)^ \\* ", "") + "}\n}\n");
        assertEquals("[0, 1]\n", out);
    }

    @Test
    void theExample() throws Exception {
        try (Stream<Path> files = Files.walk(PROJECT.resolve("examples/java"))) {
            compile(files.map(Path::toString).filter(file -> file.endsWith(".java"))
                    .toArray(String[]::new));
        }
        String abilene = "examples/abilene/abilene.";
        java(List.of(JAR, temp), List.of("org.kestro.examples.PlaceDemands", abilene + "network",
                                         abilene + "demands"),
             "-Djava.library.path=" + JAR.getParent());
        assertEquals("", err);
        String summary = Files.readString(PROJECT.resolve("README.md")); // of the command
        for (String figure : Pattern.compile("(?m)^(\\d+) of \\d+ .* (\\d+) are in place, with (\\d+) "
                + "backups\n.* reserve (\\d+) .* (\\d+)\n").matcher(out).results()
                .flatMap(m -> Stream.of(m.group(2), m.group(3), m.group(4), m.group(5))).toList()) {
            assertTrue(summary.contains(" " + figure), figure);
        }
    }
}
