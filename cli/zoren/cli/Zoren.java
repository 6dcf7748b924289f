package zoren.cli;

import java.io.BufferedWriter;
import java.io.FileDescriptor;
import java.io.FileOutputStream;
import java.io.OutputStreamWriter;
import java.io.PrintWriter;
import java.nio.charset.StandardCharsets;
import java.nio.file.Path;
import java.util.List;
import picocli.AutoComplete;
import picocli.CommandLine;
import picocli.CommandLine.Command;
import picocli.CommandLine.ParameterException;
import picocli.CommandLine.ParseResult;
import picocli.CommandLine.ScopeType;
import picocli.CommandLine.UnmatchedArgumentException;

/** The command line over the framework classes: it parses, calls them and prints. */
@Command(
        name = "zoren",
        version = "zoren ${sys:zoren.version:-(unversioned)}",
        mixinStandardHelpOptions = true,
        scope = ScopeType.INHERIT,
        sortOptions = false,
        usageHelpAutoWidth = true,
        exitCodeListHeading = "%nExit codes:%n",
        exitCodeList = {
            "0:success",
            "1:something could not be read, measured or written; standard error says what",
            "2:wrong usage"
        },
        header = "Blur and measure pictures, open the configuration, read traffic totals.",
        synopsisSubcommandLabel = "COMMAND",
        commandListHeading = "%nCommands:%n",
        footer = {
            "",
            "Examples:",
            "  zoren blur photo.jpg soft.png --radius 7.3 --color 40FF8800",
            "  zoren gray *.jpg",
            "  zoren help COMMAND",
            "",
            "Completion in bash and zsh: source <(zoren generate-completion)"
        },
        subcommands = {
            BlurCommand.class,
            GrayCommand.class,
            CastCommand.class,
            ConfigCommand.class,
            TrafficCommand.class,
            SealCommand.class,
            CommandLine.HelpCommand.class,
            AutoComplete.GenerateCompletion.class
        })
public final class Zoren implements Runnable {
    @CommandLine.Spec private CommandLine.Model.CommandSpec spec;

    private Zoren() {}

    /** Runs the program and ends the process with its exit code. */
    public static void main(String[] args) {
        final PrintWriter out = utf8Writer(FileDescriptor.out);
        final PrintWriter err = utf8Writer(FileDescriptor.err);
        int exitCode;
        try {
            exitCode = run(out, err, Names.words(args));
        } catch (LinkageError e) { // from a class's initialiser, it has a cause and no message
            final Object reason = e.getMessage() == null ? e.getCause() : e.getMessage();
            report(err, "a library is missing or broken: " + reason);
            exitCode = CommandLine.ExitCode.SOFTWARE;
        }
        if (out.checkError() && exitCode == 0) {
            err.println("zoren: standard output cannot be written");
            exitCode = CommandLine.ExitCode.SOFTWARE;
        }
        System.exit(exitCode);
    }

    /** Runs one command with its output to the given writers and returns the exit code. */
    static int run(PrintWriter out, PrintWriter err, String... args) {
        final CommandLine commandLine = new CommandLine(new Zoren());
        // The inherited header and footer are this command's own.
        commandLine
                .getSubcommands()
                .get("generate-completion")
                .getCommandSpec()
                .usageMessage()
                .header("Print a completion script for bash and zsh.")
                .footer("");
        // A negative uid is a number, not an option.
        commandLine.getSubcommands().get("traffic").setUnmatchedOptionsArePositionalParams(true);
        return commandLine
                .registerConverter(Path.class, Names::path)
                .registerConverter(float.class, Numbers::decimal)
                .setOut(out)
                .setErr(err)
                .setExpandAtFiles(false) // a picture's name may begin with @
                .setParameterExceptionHandler(Zoren::reportUsage)
                .setExecutionExceptionHandler(Zoren::reportFailure)
                .execute(args);
    }

    /** Prints a message as one line. What a name holds cannot steer the terminal. */
    static void report(PrintWriter err, String message) {
        err.println("zoren: " + Names.shown(message));
    }

    @Override
    public void run() {
        throw new ParameterException(spec.commandLine(), "a command is needed");
    }

    /** Prints what is wrong in one line, which thirty of help would scroll out of sight. */
    private static int reportUsage(ParameterException failure, String[] args) {
        final CommandLine command = failure.getCommandLine();
        ParameterException said = failure;
        List<String> nearest = List.of();
        final List<String> unknown = command.getUnmatchedArguments();
        if (!unknown.isEmpty()) { // a misspelt option, more often than a missing one
            final UnmatchedArgumentException first =
                    new UnmatchedArgumentException(command, unknown.subList(0, 1));
            said = first;
            nearest = first.getSuggestions();
        }
        report(
                command.getErr(),
                said.getMessage().replaceFirst("\\.$", "")
                        + (nearest.isEmpty() ? "" : "; the nearest is " + nearest.get(0))
                        + "; see "
                        + command.getCommandSpec().qualifiedName()
                        + " --help");
        return CommandLine.ExitCode.USAGE;
    }

    private static int reportFailure(Exception failure, CommandLine command, ParseResult parsed)
            throws Exception {
        if (!(failure instanceof Failure)) {
            throw failure; // a fault of the program: with its stack trace
        }
        report(command.getErr(), failure.getMessage());
        return CommandLine.ExitCode.SOFTWARE;
    }

    private static PrintWriter utf8Writer(FileDescriptor descriptor) {
        return new PrintWriter(
                new BufferedWriter(
                        new OutputStreamWriter(
                                new FileOutputStream(descriptor), StandardCharsets.UTF_8)),
                true);
    }
}
