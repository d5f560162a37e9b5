package org.kestro;

import static org.junit.jupiter.api.Assertions.assertEquals;
import static org.junit.jupiter.api.Assertions.assertFalse;

import java.io.File;
import java.nio.charset.StandardCharsets;
import java.nio.file.Files;
import java.nio.file.Path;
import java.util.ArrayList;
import java.util.List;
import java.util.regex.Pattern;
import java.util.stream.Collectors;
import java.util.stream.Stream;
import org.junit.jupiter.api.io.TempDir;
import org.kestro.repository.TARNEX.JNITARNEX;

/** Base of tests that look at whole processes. */
public class ProcessRunner {
    /** The jar under test. */
    protected static final Path JAR = codeOf(JNITARNEX.class);

    /** The folder of the project, in which processes run. */
    protected static final Path PROJECT =
            Path.of(System.getProperty("tarnex.examples")).toAbsolutePath().getParent();

    private static final Pattern JNI_FINDING =
            Pattern.compile("(WARNING|FATAL ERROR) in native method|WARNING: JNI");

    @TempDir
    protected Path temp;
    protected String out;
    protected String err;

    /** Runs a class to its end, which has to be a good one, and keeps what it printed. */
    protected void java(List<Path> classPath, List<String> main, String... flags)
            throws Exception {
        Path stdout = temp.resolve("stdout");
        Path stderr = temp.resolve("stderr");
        int exit = start(classPath, main, flags).redirectOutput(stdout.toFile())
                .redirectError(stderr.toFile()).start().waitFor();
        out = Files.readString(stdout, StandardCharsets.ISO_8859_1);
        err = Files.readString(stderr, StandardCharsets.ISO_8859_1);
        assertEquals(0, exit, out + err);
        assertFalse(JNI_FINDING.matcher(out + err).find(), out + err);
    }

    /** A process that runs a class under -Xcheck:jni with the library of this one; flags win. */
    protected static ProcessBuilder start(List<Path> classPath, List<String> main,
                                          String... flags) {
        List<String> command = new ArrayList<>(List.of(
                System.getProperty("java.home") + "/bin/java", "-Xcheck:jni",
                "--enable-native-access=ALL-UNNAMED", // newer ones warn without
                "-Djava.library.path=" + System.getProperty("java.library.path"), "-cp",
                classPath.stream().map(Path::toString).collect(
                        Collectors.joining(File.pathSeparator))));
        command.addAll(List.of(flags));
        command.addAll(main);
        ProcessBuilder builder = new ProcessBuilder(command).directory(PROJECT.toFile());
        builder.environment().remove("XDG_CACHE_HOME"); // flags say where things are unpacked
        return builder;
    }

    /** Where the classes of a jar or folder are, with this one among them. */
    protected static Path codeOf(Class<?> type) {
        return Path.of(type.getProtectionDomain().getCodeSource().getLocation().getPath());
    }

    /** A copy of a folder or of what is in a jar. */
    protected static void copy(Path from, Path to) throws Exception {
        try (Stream<Path> files = Files.walk(from)) {
            for (Path file : files.toList()) {
                Files.copy(file, to.resolve(from.relativize(file).toString()));
            }
        }
    }
}
