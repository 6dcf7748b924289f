package zoren.cli;

import android.util.ZorenConfig;
import com.sun.security.auth.module.UnixSystem;
import java.io.IOException;
import java.io.PrintWriter;
import java.nio.file.Files;
import java.nio.file.Path;
import java.util.concurrent.Callable;
import picocli.CommandLine.Command;
import picocli.CommandLine.Mixin;
import picocli.CommandLine.Model.CommandSpec;
import picocli.CommandLine.Spec;

@Command(
        name = "config",
        header = "Print the encrypted configuration as text.",
        description = {
            "",
            "Opens /system/etc/jpsp. Only uid 0 is served; on a host, \"unshare -r zoren config\""
                    + " gives a plain user that uid.",
            ""
        },
        footer = {
            "",
            "Example:",
            "  zoren config --device-root phone",
            "",
            "The library's log is dropped unless the environment variable ZOREN_LOG_FILE is set: it"
                    + " names a file to append to; empty, it means standard error."
        })
final class ConfigCommand implements Callable<Integer> {
    private static final String PATH = "system/etc/jpsp";
    private static final int BLOCK_BYTES = 16;

    @Spec private CommandSpec spec;
    @Mixin private DeviceRoot deviceRoot;

    @Override
    public Integer call() throws Failure, IOException {
        final Path file = deviceRoot.resolve(PATH);
        final String text = ZorenConfig.getConfigXML();
        if (text == null) {
            throw failure(file);
        }
        final PrintWriter out = spec.commandLine().getOut();
        out.print(text);
        if (!text.endsWith("\n")) {
            out.print('\n');
        }
        out.flush();
        return 0;
    }

    /** Finds out why the library gave no text. */
    private static Failure failure(Path file) throws IOException {
        final long uid = new UnixSystem().getUid();
        if (uid != 0) {
            return new Failure("the configuration is for uid 0 only, and this is uid " + uid);
        }
        if (!Files.exists(file)) {
            return new Failure(file, "there is no configuration file");
        }
        if (!Files.isReadable(file)) {
            return new Failure(file, "the configuration file cannot be read");
        }
        final long bytes = Files.size(file);
        if (bytes == 0 || bytes % BLOCK_BYTES != 0 || bytes > SealCommand.MAX_SEALED_BYTES) {
            return new Failure(
                    file, "is not a configuration file (whole cipher blocks, up to 16 MiB)");
        }
        return new Failure(file, "was sealed under another key or is damaged");
    }
}
