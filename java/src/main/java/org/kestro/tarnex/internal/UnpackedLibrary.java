package org.kestro.tarnex.internal;

import java.io.IOException;
import java.nio.channels.FileChannel;
import java.nio.channels.OverlappingFileLockException;
import java.nio.file.DirectoryStream;
import java.nio.file.Files;
import java.nio.file.Path;
import java.nio.file.StandardCopyOption;
import java.nio.file.StandardOpenOption;
import java.nio.file.attribute.PosixFilePermission;
import java.nio.file.attribute.PosixFilePermissions;
import java.util.Arrays;
import java.util.List;
import java.util.Set;
import java.util.function.Consumer;

/**
 * The jar's library in a file, which stays for the next program: in the folder that the system
 * property {@code tarnex.unpack.path} names; otherwise in {@code tarnex} in the user's cache or,
 * where that cannot be written, in {@code tarnex-USER} in the folder for temporary files. Nobody
 * else can write there.
 */
final class UnpackedLibrary {
    private UnpackedLibrary() {
    }

    /**
     * Has a file with the content used, while no other program changes it.
     *
     * @throws IOException naming the folders that were tried, and why none of them will do
     */
    static void use(byte[] content, String name, Consumer<Path> user) throws IOException {
        IOException failures = null;
        for (Path folder : folders()) {
            try (FileChannel lockFile = FileChannel.open(
                    privately(folder).resolve("lock"), StandardOpenOption.CREATE,
                    StandardOpenOption.WRITE)) {
                lock(lockFile);
                user.accept(unpacked(content, folder, name));
                return;
            } catch (IOException failure) {
                String before = failures == null ? "" : failures.getMessage() + "; ";
                failures = new IOException(before + "it cannot be unpacked to " + folder + " ("
                                           + failure + ")", failure);
            }
        }
        throw failures;
    }

    private static List<Path> folders() {
        String chosen = System.getProperty("tarnex.unpack.path");
        if (chosen != null) {
            return List.of(Path.of(chosen));
        }
        String cache = System.getenv("XDG_CACHE_HOME");
        return List.of(
                cache == null || cache.isEmpty()
                        ? Path.of(System.getProperty("user.home"), ".cache", "tarnex")
                        : Path.of(cache, "tarnex"),
                Path.of(System.getProperty("java.io.tmpdir"),
                        "tarnex-" + System.getProperty("user.name")));
    }

    /** Makes the folder if need be; refuses one that belongs, or is open, to others. */
    private static Path privately(Path folder) throws IOException {
        Files.createDirectories(folder, PosixFilePermissions.asFileAttribute(
                PosixFilePermissions.fromString("rwx------")));
        Path own = Files.createTempFile(folder, "own", null);
        try {
            Set<PosixFilePermission> allowed = Files.getPosixFilePermissions(folder);
            if (!Files.getOwner(folder).equals(Files.getOwner(own))
                    || allowed.contains(PosixFilePermission.GROUP_WRITE)
                    || allowed.contains(PosixFilePermission.OTHERS_WRITE)) {
                throw new IOException("others can write there");
            }
        } finally {
            Files.delete(own);
        }
        return folder;
    }

    /** Locks a file until it is closed; waits for other programs and, which do not queue by
     * themselves, for other class loaders. */
    private static void lock(FileChannel file) throws IOException {
        while (true) {
            try {
                file.lock();
                return;
            } catch (OverlappingFileLockException heldHere) {
                Thread.onSpinWait();
            }
        }
    }

    private static Path unpacked(byte[] content, Path folder, String name) throws IOException {
        Path file = folder.resolve(name);
        if (!Files.isRegularFile(file) || !Arrays.equals(content, Files.readAllBytes(file))) {
            Path copy = Files.createTempFile(folder, name, ".new");
            Files.write(copy, content);
            Files.move(copy, file, StandardCopyOption.ATOMIC_MOVE);
        }
        try (DirectoryStream<Path> stale = Files.newDirectoryStream(
                folder, other -> other.toString().contains("libtarnex") && !other.equals(file))) {
            for (Path other : stale) {
                Files.deleteIfExists(other); // programs that have it mapped keep it
            }
        }
        return file;
    }
}
