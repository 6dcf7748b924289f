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
import java.nio.file.attribute.PosixFileAttributes;
import java.nio.file.attribute.PosixFilePermission;
import java.nio.file.attribute.PosixFilePermissions;
import java.security.SecureRandom;
import java.util.Collections;
import java.util.HashSet;
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

    private static final Set<Path> OWN = Collections.synchronizedSet(new HashSet<>());

    static {
        Runtime.getRuntime().addShutdownHook(new Thread(WholeFile::deleteAll));
    }

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
     * any other link is refused, and one to nothing.
     *
     * <p>A file that is replaced passes its permissions, owner and group on; a new one gets {@code
     * permissions}, less the process's mask. Returns a line if the owner or group could not be
     * kept, or null.
     */
    static String write(Path target, Set<PosixFilePermission> permissions, Writer writer)
            throws Failure {
        return write(target, permissions, false, writer);
    }

    /** The same; with {@code exactly}, just these permissions whatever was replaced or the mask. */
    static String write(
            Path target, Set<PosixFilePermission> permissions, boolean exactly, Writer writer)
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
                throw new Failure(
                        target, "cannot be written: there is no folder " + Names.shown(folder));
            }
            // Short, because the target's own name may be as long as a name can be.
            final Path name = folder.resolve(String.format(".%016x.tmp", RANDOM.nextLong()));
            String remark = null;
            try (OutputStream out = createOwn(name, exists ? OWNER_ONLY : permissions)) {
                temporary = name;
                if (exists) {
                    remark = takeOver(target, file, temporary, exactly ? permissions : null);
                } else if (exactly) {
                    Files.setPosixFilePermissions(temporary, permissions);
                }
                writer.writeTo(out);
            }
            Files.move(
                    temporary,
                    file,
                    StandardCopyOption.ATOMIC_MOVE,
                    StandardCopyOption.REPLACE_EXISTING);
            OWN.remove(temporary);
            temporary = null;
            return remark;
        } catch (IOException e) {
            throw new Failure("cannot write " + new Failure(target, e).getMessage());
        } finally {
            if (temporary != null) {
                delete(temporary);
                OWN.remove(temporary);
            }
        }
    }

    /** Gives a file another one's owner and group, as far as may be, and permissions, or these. */
    private static String takeOver(
            Path target, Path from, Path to, Set<PosixFilePermission> permissions)
            throws IOException {
        final PosixFileAttributes wanted = Files.readAttributes(from, PosixFileAttributes.class);
        final PosixFileAttributeView view =
                Files.getFileAttributeView(
                        to, PosixFileAttributeView.class, LinkOption.NOFOLLOW_LINKS);
        final PosixFileAttributes given = view.readAttributes();
        String remark = null;
        try {
            if (!given.group().equals(wanted.group())) {
                view.setGroup(wanted.group());
            }
            if (!given.owner().equals(wanted.owner())) {
                view.setOwner(wanted.owner());
            }
        } catch (IOException e) {
            remark =
                    Names.shown(target) + ": is now a file of " + given.owner().getName()
                            + ", because only root can leave it to " + wanted.owner().getName()
                            + " and group " + wanted.group().getName();
        }
        view.setPermissions(permissions == null ? wanted.permissions() : permissions);
        return remark;
    }

    /** Creates a file that an interruption at any moment takes away again. */
    private static OutputStream createOwn(Path file, Set<PosixFilePermission> permissions)
            throws IOException {
        synchronized (OWN) { // the hook waits until it is known whether the file is ours
            final OutputStream out = create(file, permissions);
            OWN.add(file);
            return out;
        }
    }

    private static void deleteAll() {
        synchronized (OWN) {
            OWN.forEach(WholeFile::delete);
        }
    }

    private static void delete(Path file) {
        try {
            Files.deleteIfExists(file);
        } catch (IOException e) {
            // it stays, as anything in a folder that became unwritable
        }
    }

    /** Tells whether a link was made by who runs this or by root; any other one may lead astray. */
    private static boolean isTrusted(Path link) throws IOException {
        final Object owner = Files.getAttribute(link, "unix:uid", LinkOption.NOFOLLOW_LINKS);
        return owner.equals(0)
                || owner.equals(Files.getAttribute(Path.of("/proc/self"), "unix:uid"));
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
