package org.kestro.tarnex.internal;

import java.io.File;
import java.io.IOException;
import java.io.InputStream;
import java.nio.file.Files;
import java.nio.file.Path;
import java.util.Locale;

/**
 * Finds and loads the native library of the engine, for the classes of this jar.
 *
 * <p>In this order: the file, or the folder with the file {@code libtarnex.so}, that the system
 * property {@code tarnex.library.path} names, and then nothing else; {@code libtarnex.so} in one of
 * the folders of {@code java.library.path}; the copy in the jar, see {@link UnpackedLibrary}. What
 * is found has to be of the same version as the classes.
 */
public final class NativeLibrary {
    private static final String VERSION = Version.TEXT; // the library compares it with its own
    private static boolean isLoaded;

    private NativeLibrary() {
    }

    /**
     * Loads the library, the first time it is called.
     *
     * @throws UnsatisfiedLinkError naming the library, why it cannot be loaded and what helps
     */
    public static synchronized void load() {
        if (isLoaded) {
            return;
        }
        boolean wasInterrupted = Thread.interrupted(); // which would close the files that are read
        try {
            findAndLoad();
        } finally {
            if (wasInterrupted) {
                Thread.currentThread().interrupt();
            }
        }
        isLoaded = true;
    }

    private static void findAndLoad() {
        String fixed = System.getProperty("tarnex.library.path");
        Path installed = fixed == null ? onLibraryPath() : inFolder(Path.of(fixed));
        if (installed != null) {
            load(installed);
        } else {
            loadFromJar();
        }
    }

    /** The version of the library that is loaded. */
    private static native String libraryVersion();

    private static Path inFolder(Path place) {
        return Files.isDirectory(place) ? place.resolve(System.mapLibraryName("tarnex")) : place;
    }

    private static Path onLibraryPath() {
        for (String folder : System.getProperty("java.library.path", "").split(
                File.pathSeparator)) {
            Path file = Path.of(folder, System.mapLibraryName("tarnex"));
            if (!folder.isEmpty() && Files.exists(file)) {
                return file;
            }
        }
        return null;
    }

    private static void load(Path library) {
        try {
            System.load(library.toAbsolutePath().toString());
        } catch (UnsatisfiedLinkError error) {
            throw failure(library.toString(), error, remedyFor(error.getMessage()));
        }
        try {
            libraryVersion();
        } catch (UnsatisfiedLinkError older) {
            throw failure(library.toString(), older, "It is of another version than the classes.");
        }
    }

    private static void loadFromJar() {
        String platform = platform();
        String name = "libtarnex-" + VERSION + ".so";
        String resource = "/native/" + platform + "/" + name;
        try (InputStream library = NativeLibrary.class.getResourceAsStream(resource)) {
            if (library == null) {
                throw failure(resource, new IOException("the jar has no library for " + platform),
                              "Build one, and name it with -Dtarnex.library.path=FILE.");
            }
            UnpackedLibrary.use(library.readAllBytes(), platform + "-" + name, NativeLibrary::load);
        } catch (IOException cause) {
            throw failure(resource, cause, "Name a folder that can be written with "
                          + "-Dtarnex.unpack.path=FOLDER, or a library that is already unpacked "
                          + "with -Dtarnex.library.path=FILE.");
        }
    }

    /** This platform in the jar's terms, such as {@code linux-x86_64}. */
    private static String platform() {
        String os = System.getProperty("os.name").toLowerCase(Locale.ROOT);
        String arch = System.getProperty("os.arch").toLowerCase(Locale.ROOT);
        return os + "-" + (arch.equals("amd64") ? "x86_64" : arch);
    }

    /** What helps against a message of the loader. */
    private static String remedyFor(String message) {
        if (message.contains("another classloader")) {
            return "A library belongs to one class loader: put tarnex where a parent of all that "
                    + "use it finds it, or give this one a copy of the library of its own with "
                    + "-Dtarnex.library.path=FILE.";
        }
        if (message.contains("failed to map segment") || message.contains("ermission")) {
            return "Its folder may be mounted without exec: name another one with "
                    + "-Dtarnex.unpack.path=FOLDER, or the library with "
                    + "-Dtarnex.library.path=FILE.";
        }
        if (message.contains("ld-linux") || message.contains("Error relocating")) {
            return "This system has another C library, such as musl; the library needs glibc.";
        }
        return "Name another one with -Dtarnex.library.path=FILE, or none, with an empty "
                + "-Djava.library.path, for the copy in the jar.";
    }

    private static UnsatisfiedLinkError failure(String library, Throwable cause, String remedy) {
        UnsatisfiedLinkError error = new UnsatisfiedLinkError(
                "The tarnex library " + library + " cannot be loaded: " + cause.getMessage() + ". "
                + remedy);
        error.initCause(cause);
        return error;
    }
}
