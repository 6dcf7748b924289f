package zoren.cli;

import java.io.BufferedOutputStream;
import java.io.IOException;
import java.io.OutputStream;
import java.nio.file.FileAlreadyExistsException;
import java.nio.file.Files;
import java.nio.file.Path;
import java.nio.file.StandardCopyOption;
import java.nio.file.StandardOpenOption;

/** Writes files so that they appear whole or not at all. */
final class WholeFile {
    /** Writes the content of one file. */
    interface Writer {
        void writeTo(OutputStream out) throws IOException;
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
     * target} is a symbolic link, the file it leads to is written; a link to nothing is refused. A
     * file that is replaced passes its permissions on.
     */
    static void write(Path target, Writer writer) throws Failure {
        Path temporary = null;
        try {
            final boolean exists = Files.exists(target);
            if (exists && !Files.isRegularFile(target)) {
                throw new Failure(target, "exists and is not a regular file");
            }
            if (!exists && Files.isSymbolicLink(target)) {
                throw new Failure(target, "is a symbolic link that leads to nothing");
            }
            final Path file = exists ? target.toRealPath() : target.toAbsolutePath();
            final Path folder = file.getParent();
            if (folder == null || !Files.isDirectory(folder)) {
                throw new Failure(target, "cannot be written: there is no folder " + folder);
            }
            // The process id makes the name free. createTempFile would let only the owner read.
            final String suffix = "." + ProcessHandle.current().pid() + ".tmp";
            temporary = folder.resolve("." + file.getFileName() + suffix);
            temporary.toFile().deleteOnExit(); // an interrupted run leaves nothing either
            try (OutputStream out =
                    new BufferedOutputStream(
                            Files.newOutputStream(
                                    temporary,
                                    StandardOpenOption.CREATE,
                                    StandardOpenOption.TRUNCATE_EXISTING,
                                    StandardOpenOption.WRITE))) {
                if (exists) { // before the content, which may be for few eyes
                    Files.setPosixFilePermissions(
                            temporary, Files.getPosixFilePermissions(file));
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
}
