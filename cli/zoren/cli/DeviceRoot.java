package zoren.cli;

import java.nio.file.Files;
import java.nio.file.Path;
import picocli.CommandLine.Option;

/**
 * The option that keeps the phone's files in a folder. The launcher acts on it, before the virtual
 * machine starts; here it is only checked.
 */
final class DeviceRoot {
    private static final String VARIABLE = "ZOREN_DEVICE_ROOT";

    @Option(
            names = "--device-root",
            paramLabel = "DIR",
            description =
                    "A folder to take the phone's files from, as if it were /. By default the"
                            + " environment variable " + VARIABLE + " names it.")
    private Path folder;

    /** Returns where the library looks for a file of the phone, a regular one if there is any. */
    Path resolve(String devicePath) throws Failure {
        final String variable = System.getenv(VARIABLE);
        final String root = variable == null ? "" : variable;
        // As text, which is all that a variable keeps of a name that is not UTF-8.
        if (folder != null && !folder.toString().equals(Path.of(root).toString())) {
            throw new Failure("--device-root takes effect only through the launcher, bin/zoren");
        }
        final Path top = folder == null ? Path.of(root.isEmpty() ? "/" : root) : folder;
        if (!Files.isDirectory(top)) {
            throw new Failure(top, "the device root is not a folder");
        }
        final Path file = top.resolve(devicePath);
        // The library opens whatever is there: a pipe would keep it waiting, a device has no end.
        if (Files.exists(file) && !Files.isRegularFile(file)) {
            throw new Failure(file, "is not a regular file");
        }
        return file;
    }
}
