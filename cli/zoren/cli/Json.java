package zoren.cli;

import com.fasterxml.jackson.core.JsonFactory;
import com.fasterxml.jackson.core.JsonGenerator;
import java.io.IOException;
import java.io.PrintWriter;

/** Makes JSON writers. */
final class Json {
    private Json() {}

    /** Returns a writer of compact JSON that leaves {@code out} open when it is closed. */
    static JsonGenerator generator(PrintWriter out) throws IOException {
        return new JsonFactory()
                .createGenerator(out)
                .disable(JsonGenerator.Feature.AUTO_CLOSE_TARGET);
    }
}
