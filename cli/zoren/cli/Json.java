package zoren.cli;

import com.fasterxml.jackson.core.JsonFactory;
import com.fasterxml.jackson.core.JsonGenerator;
import com.fasterxml.jackson.core.json.JsonWriteFeature;
import java.io.IOException;
import java.io.PrintWriter;

/** Makes JSON writers. */
final class Json {
    private Json() {}

    /**
     * Returns a writer of compact JSON that leaves {@code out} open when it is closed. Names may
     * hold what steers a terminal, beyond ASCII too.
     */
    static JsonGenerator generator(PrintWriter out) throws IOException {
        return JsonFactory.builder()
                .enable(JsonWriteFeature.ESCAPE_NON_ASCII)
                .build()
                .createGenerator(out)
                .disable(JsonGenerator.Feature.AUTO_CLOSE_TARGET);
    }
}
