package org.kestro.repository.TARNEX;

import java.io.IOException;
import java.io.InputStream;
import java.io.OutputStream;
import java.nio.file.Files;
import java.nio.file.Path;
import java.nio.file.attribute.PosixFilePermissions;
import java.util.Locale;

/**
 * Finds and loads the native library of the engine.
 *
 * <p>For the classes of this jar; a program has no need to call it.
 *
 * <p>A library on {@code java.library.path} wins over the copy inside the jar, so that a freshly
 * built or a system-wide one can be used without touching the jar.
 */
public final class NativeLibrary {
    private static final String NAME = "tarnex";
    private static boolean isLoaded; // a second copy from the jar would have books of its own

    private NativeLibrary() {
    }

    /**
     * Loads the library, the first time it is called.
     *
     * @throws UnsatisfiedLinkError naming both places that were tried, when neither has a library
     *         that can be loaded here
     */
    public static synchronized void load() {
        if (isLoaded) {
            return;
        }
        try {
            System.loadLibrary(NAME);
        } catch (UnsatisfiedLinkError notOnPath) {
            String resource = "/native/" + platform() + "/lib" + NAME + ".so";
            try {
                loadFromJar(resource);
            } catch (IOException | UnsatisfiedLinkError notInJar) {
                throw failure(notOnPath, resource, notInJar);
            }
        }
        isLoaded = true;
    }

    private static void loadFromJar(String resource) throws IOException {
        try (InputStream library = NativeLibrary.class.getResourceAsStream(resource)) {
            if (library == null) {
                throw new IOException("no such resource");
            }
            Path copy = Files.createTempFile(NAME, ".so", PosixFilePermissions.asFileAttribute(
                    PosixFilePermissions.fromString("rw-------")));
            try {
                try (OutputStream out = Files.newOutputStream(copy)) { // keeps the permissions
                    library.transferTo(out);
                }
                System.load(copy.toString());
            } finally {
                Files.deleteIfExists(copy); // what is loaded stays mapped without the file
            }
        }
    }

    /** This platform in the jar's terms, such as {@code linux-x86_64}. */
    private static String platform() {
        String os = System.getProperty("os.name").toLowerCase(Locale.ROOT);
        String arch = System.getProperty("os.arch").toLowerCase(Locale.ROOT);
        return os + "-" + (arch.equals("amd64") ? "x86_64" : arch);
    }

    private static UnsatisfiedLinkError failure(UnsatisfiedLinkError notOnPath, String resource,
                                                Throwable notInJar) {
        UnsatisfiedLinkError error = new UnsatisfiedLinkError(
                "the " + NAME + " library cannot be loaded; from java.library.path: "
                + notOnPath.getMessage() + "; from the class path resource " + resource + ": "
                + notInJar.getMessage());
        error.addSuppressed(notOnPath);
        error.addSuppressed(notInJar);
        return error;
    }
}
