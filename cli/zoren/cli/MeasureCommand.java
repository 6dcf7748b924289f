package zoren.cli;

import android.graphics.Bitmap;
import com.fasterxml.jackson.core.JsonGenerator;
import java.io.IOException;
import java.io.PrintWriter;
import java.nio.file.Path;
import java.util.List;
import java.util.concurrent.Callable;
import picocli.CommandLine.Model.CommandSpec;
import picocli.CommandLine.Option;
import picocli.CommandLine.Parameters;
import picocli.CommandLine.Spec;

/** Measures pictures one after the other; one that fails is reported, and the others go on. */
abstract class MeasureCommand implements Callable<Integer> {
    private static final int LEAST_SIDE = 2;

    @Spec CommandSpec spec;

    @Parameters(arity = "1..*", paramLabel = "INPUT", description = "PNG or JPEG files.")
    private List<Path> inputs;

    @Option(
            names = "--json",
            description = "Print a JSON array, an object a picture; one that fails has an error.")
    private boolean json;

    /** Returns the name of the measure. */
    abstract String name();

    /** Measures a picture of at least 2 x 2 pixels. */
    abstract int measure(Bitmap bitmap);

    /** Returns the measure as it is printed. */
    abstract String text(int measure);

    /** Writes the measure as a JSON value. */
    abstract void writeValue(JsonGenerator generator, int measure) throws IOException;

    @Override
    public Integer call() throws Failure, IOException {
        final PrintWriter out = spec.commandLine().getOut();
        if (!json) {
            return measureAll(null, out);
        }
        try (JsonGenerator generator = Json.generator(out)) {
            generator.writeStartArray();
            final int exitCode = measureAll(generator, out);
            generator.writeEndArray();
            return exitCode;
        } finally {
            out.println();
        }
    }

    private int measureAll(JsonGenerator generator, PrintWriter out) throws IOException {
        int exitCode = 0;
        for (final Path path : inputs) {
            Integer measure = null;
            String error = null;
            try {
                measure = measureFile(path);
            } catch (Failure e) {
                error = e.getMessage();
                Zoren.report(spec.commandLine().getErr(), error);
                exitCode = 1;
            }
            if (generator != null) {
                writeEntry(generator, path, measure, error);
            } else if (measure != null) {
                out.println(text(measure) + "\t" + path);
            }
        }
        return exitCode;
    }

    private int measureFile(Path path) throws Failure {
        final Bitmap bitmap = Pictures.read(path);
        try {
            if (bitmap.getWidth() < LEAST_SIDE || bitmap.getHeight() < LEAST_SIDE) {
                throw new Failure(path, "is narrower or lower than 2 pixels, which has no measure");
            }
            return measure(bitmap);
        } finally {
            bitmap.recycle();
        }
    }

    private void writeEntry(JsonGenerator generator, Path path, Integer measure, String error)
            throws IOException {
        generator.writeStartObject();
        generator.writeStringField("path", path.toString());
        generator.writeFieldName(name());
        if (measure == null) {
            generator.writeNull();
            generator.writeStringField("error", error);
        } else {
            writeValue(generator, measure);
        }
        generator.writeEndObject();
    }
}
