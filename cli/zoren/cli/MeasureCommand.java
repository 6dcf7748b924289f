package zoren.cli;

import android.graphics.Bitmap;
import com.fasterxml.jackson.core.JsonGenerator;
import java.io.IOException;
import java.io.PrintWriter;
import java.nio.file.Path;
import java.util.ArrayList;
import java.util.List;
import java.util.concurrent.Callable;
import picocli.CommandLine.Mixin;
import picocli.CommandLine.Model.CommandSpec;
import picocli.CommandLine.Option;
import picocli.CommandLine.Parameters;
import picocli.CommandLine.Spec;

/** Measures pictures and prints in their order; one that fails is reported, the others go on. */
abstract class MeasureCommand implements Callable<Integer> {
    private static final int LEAST_SIDE = 2;

    /** What is printed of a picture. */
    interface Measure {
        /** Returns the measure as it is printed before the path. */
        String text();

        /** Returns what is printed below, each line ended, or nothing. */
        default String details() {
            return "";
        }

        /** Writes the measure as a field, and those that go with it. */
        void writeTo(JsonGenerator generator) throws IOException;
    }

    private static final class Result {
        private final Path path;
        private final Measure measure; // null for a failure
        private final String error;

        private Result(Path path, Measure measure, String error) {
            this.path = path;
            this.measure = measure;
            this.error = error;
        }
    }

    @Spec CommandSpec spec;
    @Mixin private WorkOptions work;

    @Parameters(
            arity = "1..*",
            paramLabel = "INPUT",
            description =
                    "PNG, JPEG, WebP, GIF, BMP or TIFF pictures, whatever their names, or folders"
                            + " of them; - is standard input.")
    private List<Path> inputs;

    @Option(
            names = "--json",
            description = "Print a JSON array, an object a picture; one that fails has an error.")
    private boolean json;

    /** Returns the name of the measure. */
    abstract String name();

    /** Measures a picture of at least 2 x 2 pixels. */
    abstract Measure measure(Bitmap bitmap);

    @Override
    public Integer call() throws Exception {
        final PrintWriter out = spec.commandLine().getOut();
        final Inputs found = Inputs.of(inputs, work.recursive, null);
        if (!json) {
            return measureAll(found, null, out);
        }
        try (JsonGenerator generator = Json.generator(out)) {
            generator.writeStartArray();
            final int exitCode = measureAll(found, generator, out);
            generator.writeEndArray();
            return exitCode;
        } finally {
            out.println();
        }
    }

    private int measureAll(Inputs found, JsonGenerator generator, PrintWriter out)
            throws Exception {
        final PrintWriter err = spec.commandLine().getErr();
        final PixelBudget budget = new PixelBudget(work.maxPixels);
        final List<Callable<Result>> tasks = new ArrayList<>();
        found.list.forEach(input -> tasks.add(() -> measureInput(input, budget)));
        final int[] failed = new int[1];
        Workers.run(
                work.jobs,
                tasks,
                result -> {
                    if (result.error != null) {
                        Zoren.report(err, result.error);
                        ++failed[0];
                    }
                    if (generator != null) {
                        writeEntry(generator, result);
                    } else if (result.measure != null) {
                        out.println(result.measure.text() + "\t" + Names.shown(result.path));
                        out.print(result.measure.details());
                    }
                });
        if (found.skippedSome()) {
            Zoren.report(err, found.summary("measured", failed[0]));
        }
        return failed[0] == 0 ? 0 : 1;
    }

    private Result measureInput(Inputs.Input input, PixelBudget budget) {
        try {
            if (input.failure != null) {
                throw input.failure;
            }
            try (Picture picture = Pictures.read(input.source, budget)) {
                final Bitmap bitmap = picture.bitmap;
                if (bitmap.getWidth() < LEAST_SIDE || bitmap.getHeight() < LEAST_SIDE) {
                    throw new Failure(
                            input.path, "is narrower or lower than 2 pixels, which has no measure");
                }
                return new Result(input.path, measure(bitmap), null);
            }
        } catch (Failure e) {
            return new Result(input.path, null, e.getMessage());
        } catch (OutOfMemoryError e) {
            return new Result(
                    input.path,
                    null,
                    Names.shown(input.path) + ": is too large for the memory there is");
        }
    }

    private void writeEntry(JsonGenerator generator, Result result) throws IOException {
        generator.writeStartObject();
        generator.writeStringField("path", Names.word(result.path));
        if (result.measure == null) {
            generator.writeNullField(name());
            generator.writeStringField("error", result.error);
        } else {
            result.measure.writeTo(generator);
        }
        generator.writeEndObject();
    }
}
