package zoren.cli;

import java.io.IOException;
import java.nio.file.AccessDeniedException;
import java.nio.file.FileSystemException;
import java.nio.file.NoSuchFileException;
import java.nio.file.Path;
import javax.imageio.IIOException;

/** What the user can act on: the message becomes one line on standard error, the exit code 1. */
class Failure extends Exception {
    private static final long serialVersionUID = 1L;

    Failure(String message) {
        super(message);
    }

    Failure(Path path, String reason) {
        super(Names.shown(path) + ": " + reason);
    }

    Failure(Path path, IOException cause) {
        this(path, reason(cause));
    }

    private static String reason(IOException cause) {
        if (cause instanceof IIOException && cause.getCause() instanceof IOException) {
            return reason((IOException) cause.getCause()); // what the file system said
        }
        if (cause instanceof NoSuchFileException) {
            return "no such file or folder";
        }
        if (cause instanceof AccessDeniedException) {
            return "permission denied";
        }
        if (cause instanceof FileSystemException
                && ((FileSystemException) cause).getReason() != null) {
            return ((FileSystemException) cause).getReason();
        }
        return cause.getMessage() == null ? cause.toString() : cause.getMessage();
    }
}
