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

    /** Returns where the library looks for a file of the phone. */
    Path resolve(String devicePath) throws Failure {
        final String variable = System.getenv(VARIABLE);
        final String root = variable == null ? "" : variable;
        if (folder != null && !folder.equals(Path.of(root))) {
            throw new Failure("--device-root takes effect only through the launcher, bin/zoren");
        }
        if (!root.isEmpty() && !Files.isDirectory(Path.of(root))) {
            throw new Failure(Path.of(root), "the device root is not a folder");
        }
        return Path.of(root + devicePath);
    }
}
