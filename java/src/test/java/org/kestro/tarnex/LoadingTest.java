package org.kestro.tarnex;

import static org.junit.jupiter.api.Assertions.assertArrayEquals;
import static org.junit.jupiter.api.Assertions.assertEquals;
import static org.junit.jupiter.api.Assertions.assertFalse;
import static org.junit.jupiter.api.Assertions.assertTrue;

import java.net.URL;
import java.net.URLClassLoader;
import java.nio.channels.FileChannel;
import java.nio.charset.StandardCharsets;
import java.nio.file.FileSystem;
import java.nio.file.FileSystems;
import java.nio.file.Files;
import java.nio.file.Path;
import java.nio.file.StandardOpenOption;
import java.nio.file.attribute.FileTime;
import java.nio.file.attribute.PosixFilePermissions;
import java.util.List;
import java.util.concurrent.TimeUnit;
import java.util.stream.IntStream;
import java.util.stream.Stream;
import org.junit.jupiter.api.BeforeEach;
import org.junit.jupiter.api.Test;
import org.kestro.ProcessRunner;
import org.kestro.UseEngine;

/** Where the library comes from, and what is said when it does not. */
class LoadingTest extends ProcessRunner {
    private static final Path TESTS = codeOf(LoadingTest.class);
    private static final String NO_LIBRARIES = "-Djava.library.path=";
    private Path folder;
    private String unpackThere;

    /** Uses an engine in two class loaders. */
    public static final class UseTwice {
        public static void main(String[] arguments) throws Exception {
            URL[] places = Stream.of(System.getProperty("java.class.path").split(":"))
                    .map(UseTwice::url).toArray(URL[]::new);
            for (int i = 0; i < 2; i++) {
                new URLClassLoader(places, null).loadClass(UseEngine.class.getName())
                        .getMethod("main", String[].class).invoke(null, (Object) new String[0]);
            }
        }

        private static URL url(String place) {
            try {
                return Path.of(place).toUri().toURL();
            } catch (java.net.MalformedURLException e) {
                throw new IllegalArgumentException(e);
            }
        }
    }

    @BeforeEach
    void names() {
        folder = temp.resolve("unpacked");
        unpackThere = "-Dtarnex.unpack.path=" + folder;
    }

    private void use(Path jar, String... flags) throws Exception {
        java(List.of(jar, TESTS), List.of(UseEngine.class.getName()), flags);
    }

    private void expect(String text) {
        assertTrue(out.contains(text), out + err);
    }

    private List<Path> unpacked() throws Exception {
        try (Stream<Path> files = Files.list(folder)) {
            return files.filter(file -> file.toString().contains("libtarnex")).toList();
        }
    }

    @Test
    void theCopyInTheJarIsUnpackedOnce() throws Exception {
        use(JAR, NO_LIBRARIES, unpackThere);
        expect("nodes [4]");
        assertEquals("rwx------", PosixFilePermissions.toString(
                Files.getPosixFilePermissions(folder)));
        Path library = unpacked().get(0);
        byte[] content = Files.readAllBytes(library);
        FileTime time = FileTime.fromMillis(1_000_000);
        Files.setLastModifiedTime(library, time);
        Path stale = Files.createFile(folder.resolve("linux-x86_64-libtarnex-0.0.9.so"));
        use(JAR, NO_LIBRARIES, unpackThere);
        expect("nodes [4]");
        assertEquals(time, Files.getLastModifiedTime(library));
        assertTrue(Files.notExists(stale));

        content[content.length / 2] ^= 1;
        Files.write(library, content);
        use(JAR, NO_LIBRARIES, unpackThere, "-Dinterrupted=true");
        expect("nodes [4]");
        content[content.length / 2] ^= 1;
        assertArrayEquals(content, Files.readAllBytes(library));
    }

    @Test
    void manyProcessesMayStartAtOnce() throws Exception {
        Files.createDirectory(folder, PosixFilePermissions.asFileAttribute(
                PosixFilePermissions.fromString("rwx------")));
        FileChannel lock = FileChannel.open(folder.resolve("lock"), StandardOpenOption.CREATE,
                                            StandardOpenOption.WRITE);
        lock.lock();
        List<Process> all = IntStream.range(0, 4).mapToObj(i -> {
            try {
                return start(List.of(JAR, TESTS), List.of(UseEngine.class.getName()), NO_LIBRARIES,
                             unpackThere).redirectErrorStream(true).start();
            } catch (java.io.IOException e) {
                throw new IllegalStateException(e);
            }
        }).toList();
        assertFalse(all.get(0).waitFor(2, TimeUnit.SECONDS)); // none goes on while another unpacks
        lock.close();
        for (Process one : all) {
            assertEquals("nodes [4]\n", new String(one.getInputStream().readAllBytes(),
                                                  StandardCharsets.UTF_8));
        }
        assertEquals(1, unpacked().size());
    }

    @Test
    void aHomeThatCannotBeWrittenIsNoMatter() throws Exception {
        use(JAR, NO_LIBRARIES, "-Duser.home=/dev/null", "-Djava.io.tmpdir=" + temp);
        expect("nodes [4]");
        use(JAR, NO_LIBRARIES, "-Duser.home=/dev/null", "-Djava.io.tmpdir=/dev/null");
        expect("it cannot be unpacked to /dev/null/.cache/tarnex");
        expect("Name a folder that can be written with -Dtarnex.unpack.path=FOLDER");
        Files.createDirectory(folder);
        for (String open : List.of("rwxrwx---", "rwx---rwx")) {
            Files.setPosixFilePermissions(folder, PosixFilePermissions.fromString(open));
            use(JAR, NO_LIBRARIES, unpackThere);
            expect("others can write there");
        }
    }

    @Test
    void aNamedLibraryIsTakenOrNone() throws Exception {
        use(JAR, NO_LIBRARIES, unpackThere);
        String library = unpacked().get(0).toString();
        use(JAR, NO_LIBRARIES, "-Dtarnex.library.path=" + library);
        expect("nodes [4]");
        Path broken = Files.writeString(temp.resolve("libtarnex.so"), "no library");
        for (String place : List.of(broken.toString(), temp.toString())) {
            use(JAR, "-Dtarnex.library.path=" + place, unpackThere);
            expect("The tarnex library " + broken + " cannot be loaded: ");
        }
        use(JAR, "-Dtarnex.library.path=" + temp.resolve("nothing"), unpackThere);
        expect("nothing cannot be loaded: ");
        use(JAR, "-Djava.library.path=" + temp, unpackThere);
        expect("with an empty -Djava.library.path, for the copy in the jar");
    }

    @Test
    void libraryAndClassesAreOfOneVersion() throws Exception {
        Path classes = Files.createDirectory(temp.resolve("classes"));
        try (FileSystem jar = FileSystems.newFileSystem(JAR)) {
            copy(jar.getPath("/org"), classes.resolve("org"));
        }
        Path loader = classes.resolve("org/kestro/tarnex/internal/NativeLibrary.class");
        String code = Files.readString(loader, StandardCharsets.ISO_8859_1);
        String other = code.replaceAll("\\d+\\.\\d+\\.\\d", "7.7.7");
        Files.writeString(loader, other, StandardCharsets.ISO_8859_1);
        use(classes, "-Djava.library.path=" + JAR.getParent());
        expect(", the classes are of version 7.7.7");
        use(classes, NO_LIBRARIES);
        expect("the jar has no library for linux-");
    }

    @Test
    void aSecondClassLoaderIsToldWhatToDo() throws Exception {
        java(List.of(JAR, TESTS), List.of(UseTwice.class.getName()), NO_LIBRARIES, unpackThere);
        assertTrue(out.startsWith("nodes [4]\nThe tarnex library "), out);
        expect("A library belongs to one class loader");
    }

    @Test
    void theJarIsAModule() throws Exception {
        java(List.of(TESTS), List.of(UseEngine.class.getName()), NO_LIBRARIES, unpackThere,
             "--module-path", JAR.toString(), "--add-modules", "org.kestro.tarnex",
             "--enable-native-access=org.kestro.tarnex");
        expect("nodes [4]");
        assertEquals("", err);
    }
}
