package zoren.cli;

import com.fasterxml.jackson.core.JsonGenerator;
import java.io.IOException;
import java.io.PrintWriter;
import java.math.BigInteger;
import java.nio.file.Path;
import java.util.Arrays;
import java.util.LinkedHashMap;
import java.util.Map;
import java.util.concurrent.Callable;
import java.util.function.ToLongBiFunction;
import picocli.CommandLine.Command;
import picocli.CommandLine.ITypeConverter;
import picocli.CommandLine.Mixin;
import picocli.CommandLine.Model.CommandSpec;
import picocli.CommandLine.Option;
import picocli.CommandLine.Parameters;
import picocli.CommandLine.Spec;
import picocli.CommandLine.TypeConversionException;
import zoren.net.ZorenTrafficStats;

@Command(
        name = "traffic",
        header = "Print the traffic totals of a network interface and a uid.",
        description = {
            "",
            "Reads /proc/net/xt_qtaguid/stats. Prints the total of one counter, or all four as"
                    + " name, tab, total. A pair that the file does not list has totals of 0.",
            ""
        },
        footer = {
            "",
            "Examples:",
            "  zoren traffic wlan0 10001 --device-root phone",
            "  zoren traffic wlan0 10001 --counter rx-bytes"
        })
final class TrafficCommand implements Callable<Integer> {
    private static final String PATH = "proc/net/xt_qtaguid/stats";
    private static final long FAILED = -1;

    private enum Counter {
        RX_BYTES("rx-bytes", ZorenTrafficStats::getRxBytes),
        RX_PACKETS("rx-packets", ZorenTrafficStats::getRxPackets),
        TX_BYTES("tx-bytes", ZorenTrafficStats::getTxBytes),
        TX_PACKETS("tx-packets", ZorenTrafficStats::getTxPackets);

        private final String label;
        private final ToLongBiFunction<String, Integer> read;

        Counter(String label, ToLongBiFunction<String, Integer> read) {
            this.label = label;
            this.read = read;
        }

        @Override
        public String toString() {
            return label;
        }
    }

    @Spec private CommandSpec spec;
    @Mixin private DeviceRoot deviceRoot;

    @Parameters(index = "0", paramLabel = "IFACE", description = "The interface, such as wlan0.")
    private String iface;

    @Parameters(
            index = "1",
            paramLabel = "UID",
            converter = UidConverter.class,
            description = "The uid, 0 to 4294967295; a negative one stands for its 32 bits.")
    private int uid;

    @Option(
            names = "--counter",
            paramLabel = "NAME",
            converter = CounterConverter.class,
            description = "Print only this total: ${COMPLETION-CANDIDATES}.")
    private Counter counter;

    @Option(names = "--json", description = "Print a JSON object.")
    private boolean json;

    @Override
    public Integer call() throws Failure, IOException {
        final Path file = deviceRoot.resolve(PATH);
        final Map<String, String> totals = new LinkedHashMap<>();
        for (final Counter each : counter == null ? Counter.values() : new Counter[] {counter}) {
            final long total = each.read.applyAsLong(iface, uid);
            if (total == FAILED) {
                throw new Failure(file, "the traffic statistics cannot be read");
            }
            totals.put(each.label, Long.toUnsignedString(total));
        }
        final PrintWriter out = spec.commandLine().getOut();
        if (json) {
            writeJson(out, totals);
        } else if (counter != null) {
            out.println(totals.get(counter.label));
        } else {
            totals.forEach((label, total) -> out.println(label + "\t" + total));
        }
        return 0;
    }

    private void writeJson(PrintWriter out, Map<String, String> totals) throws IOException {
        try (JsonGenerator generator = Json.generator(out)) {
            generator.writeStartObject();
            generator.writeStringField("interface", iface);
            generator.writeNumberField("uid", Integer.toUnsignedLong(uid));
            for (final Map.Entry<String, String> total : totals.entrySet()) {
                generator.writeFieldName(total.getKey());
                generator.writeNumber(new BigInteger(total.getValue()));
            }
            generator.writeEndObject();
        }
        out.println();
    }

    private static final class CounterConverter implements ITypeConverter<Counter> {
        @Override
        public Counter convert(String text) {
            return Arrays.stream(Counter.values())
                    .filter(counter -> counter.label.equals(text))
                    .findFirst()
                    .orElseThrow(
                            () ->
                                    new TypeConversionException(
                                            "'" + text + "' is none of "
                                                    + Arrays.toString(Counter.values())));
        }
    }

    private static final class UidConverter implements ITypeConverter<Integer> {
        @Override
        public Integer convert(String text) {
            final BigInteger uid = Numbers.integer(text);
            if (uid.bitLength() > 32 || uid.signum() < 0 && uid.bitLength() > 31) {
                throw new TypeConversionException("'" + text + "' is not a 32-bit number");
            }
            return uid.intValue();
        }
    }
}
