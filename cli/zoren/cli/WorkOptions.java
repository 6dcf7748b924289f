package zoren.cli;

import picocli.CommandLine.Option;

/** How pictures are found and how many are in work at a time. */
final class WorkOptions {
    @Option(
            names = {"-R", "--recursive"},
            description = "Go into the folders in a folder too.")
    boolean recursive;

    @Option(
            names = {"-j", "--jobs"},
            paramLabel = "N",
            converter = Numbers.Jobs.class,
            description = "Work on N pictures at a time; by default one a processor.")
    int jobs = Runtime.getRuntime().availableProcessors();

    @Option(
            names = "--max-pixels",
            defaultValue = "250000000",
            paramLabel = "N",
            converter = Numbers.Pixels.class,
            description =
                    "Hold at most N pixels at a time, of 4 bytes each, ${DEFAULT-VALUE} by default."
                            + " A picture of more is refused before any memory is taken for it.")
    int maxPixels;
}
