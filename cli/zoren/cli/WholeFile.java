package zoren.cli;

import java.io.BufferedOutputStream;
import java.io.IOException;
import java.io.OutputStream;
import java.nio.channels.Channels;
import java.nio.file.FileAlreadyExistsException;
import java.nio.file.Files;
import java.nio.file.LinkOption;
import java.nio.file.Path;
import java.nio.file.StandardCopyOption;
import java.nio.file.StandardOpenOption;
import java.nio.file.attribute.PosixFileAttributeView;
import java.nio.file.attribute.PosixFilePermission;
import java.nio.file.attribute.PosixFilePermissions;
import java.security.SecureRandom;
import java.util.Set;

/** Writes files so that they appear whole or not at all. */
final class WholeFile {
    /** Writes the content of one file. */
    interface Writer {
        void writeTo(OutputStream out) throws IOException;
    }

    /** What anybody may do with a new file, as far as the process's mask lets it. */
    static final Set<PosixFilePermission> SHARED = PosixFilePermissions.fromString("rw-rw-rw-");

    static final Set<PosixFilePermission> OWNER_ONLY = PosixFilePermissions.fromString("rw-------");

    private static final SecureRandom RANDOM = new SecureRandom();

    private WholeFile() {}

    /** Makes the folder, and those on the way to it, unless it is there. */
    static void makeFolder(Path folder) throws Failure {
        if (Files.isDirectory(folder)) {
            return; // createDirectories would refuse a link to a folder
        }
        try {
            Files.createDirectories(folder);
        } catch (FileAlreadyExistsException e) {
            throw new Failure(folder, "exists and is not a folder");
        } catch (IOException e) {
            throw new Failure("cannot make the folder " + new Failure(folder, e).getMessage());
        }
    }

    /**
     * Writes {@code target}, replacing what it was, by way of a temporary file in its folder. If
     * the writer fails, {@code target} is as before and the temporary file is gone. Where {@code
     * target} is a symbolic link of the user's own or of root's, the file it leads to is written;
     * any other link is refused, and one to nothing. A file that is replaced passes its permissions
     * on; a new one gets {@code permissions}.
     */
    static void write(Path target, Set<PosixFilePermission> permissions, Writer writer)
            throws Failure {
        Path temporary = null;
        try {
            final boolean exists = Files.exists(target);
            if (exists && !Files.isRegularFile(target)) {
                throw new Failure(target, "exists and is not a regular file");
            }
            if (!exists && Files.isSymbolicLink(target)) {
                throw new Failure(target, "is a symbolic link that leads to nothing");
            }
            if (Files.isSymbolicLink(target) && !isTrusted(target)) {
                throw new Failure(target, "is a symbolic link of another user");
            }
            final Path file = exists ? target.toRealPath() : target.toAbsolutePath();
            final Path folder = file.getParent();
            if (folder == null || !Files.isDirectory(folder)) {
                throw new Failure(target, "cannot be written: there is no folder " + folder);
            }
            // Short, because the target's own name may be as long as a name can be.
            temporary = folder.resolve(String.format(".%016x.tmp", RANDOM.nextLong()));
            temporary.toFile().deleteOnExit(); // an interrupted run leaves nothing either
            try (OutputStream out = create(temporary, exists ? OWNER_ONLY : permissions)) {
                if (exists) {
                    Files.getFileAttributeView(
                                    temporary,
                                    PosixFileAttributeView.class,
                                    LinkOption.NOFOLLOW_LINKS)
                            .setPermissions(Files.getPosixFilePermissions(file));
                }
                writer.writeTo(out);
            }
            Files.move(
                    temporary,
                    file,
                    StandardCopyOption.ATOMIC_MOVE,
                    StandardCopyOption.REPLACE_EXISTING);
            temporary = null;
        } catch (IOException e) {
            throw new Failure("cannot write " + new Failure(target, e).getMessage());
        } finally {
            if (temporary != null) {
                temporary.toFile().delete();
            }
        }
    }

    /** Tells whether a link was made by who runs this or by root; any other one may lead astray. */
    private static boolean isTrusted(Path link) throws IOException {
        final Object owner = Files.getAttribute(link, "unix:uid", LinkOption.NOFOLLOW_LINKS);
        return owner.equals(0) || owner.equals(Files.getAttribute(Path.of("/proc/self"), "unix:uid"));
    }

    /**
     * Creates a file that has these permissions, less the process's mask, from its first moment.
     * Whatever has the name, a link to anywhere too, is refused: others may write to the folder.
     */
    static OutputStream create(Path file, Set<PosixFilePermission> permissions)
            throws IOException {
        return new BufferedOutputStream(
                Channels.newOutputStream(
                        Files.newByteChannel(
                                file,
                                Set.of(
                                        StandardOpenOption.CREATE_NEW,
                                        StandardOpenOption.WRITE,
                                        LinkOption.NOFOLLOW_LINKS),
                                PosixFilePermissions.asFileAttribute(permissions))));
    }
}
