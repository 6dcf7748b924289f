package zoren;

import static org.junit.jupiter.api.Assertions.*;

import android.util.ZorenConfig;
import java.io.IOException;
import java.nio.file.Files;
import java.nio.file.Path;
import java.util.Arrays;
import java.util.List;
import java.util.Objects;
import java.util.function.ToLongBiFunction;
import javax.crypto.Cipher;
import javax.crypto.spec.IvParameterSpec;
import javax.crypto.spec.SecretKeySpec;
import org.junit.jupiter.api.Test;
import zoren.net.ZorenTrafficStats;

/** The natives that read files; as uid 0, with the device root mapped. */
class FrameworkTest {
    private static final Path ROOT = Path.of(System.getenv("ZOREN_DEVICE_ROOT"));
    private static final Path LOG = Path.of(System.getenv("ZOREN_LOG_FILE"));
    private static final byte[] KEY = "Qx7@Lumatrix2049".getBytes();
    private static final int MOST = 16 << 20;

    @Test
    void opensConfigurationsUpToTheLimitAndLogsEach() throws Exception {
        final Path file = ROOT.resolve("system/etc/jpsp");
        final Cipher cipher = Cipher.getInstance("AES/CBC/NoPadding");
        cipher.init(Cipher.ENCRYPT_MODE, new SecretKeySpec(KEY, "AES"), new IvParameterSpec(KEY));
        final String error = "I/zorenconfig: error zorenconfig file \n";
        final StringBuilder log =
                new StringBuilder("I/zorenconfig: can not read file /system/etc/jpsp \n" + error);
        Files.write(LOG, new byte[0]);
        Files.deleteIfExists(file);
        assertNull(ZorenConfig.getConfigXML());
        final int[][] rows = { // bytes of the file, the pad count at its end, the text's bytes
            {16, 16, 0}, {16, 17, -1}, {17, -1, -1}, {MOST, 255, MOST - 255}, {MOST + 16, -1, -1},
        };
        for (final int[] row : rows) {
            final byte[] text = "x".repeat(row[0] / 16 * 16).getBytes();
            if (row[1] >= 0) {
                text[text.length - 1] = (byte) row[1];
                log.append("I/zorenconfig:  zorenconfig pading_length " + row[1] + " \n");
            }
            log.append(row[2] < 0 ? error : "");
            Files.write(file, Arrays.copyOf(cipher.doFinal(text), row[0]));
            final String expected = row[2] < 0 ? null : "x".repeat(row[2]);
            assertTrue(Objects.equals(expected, ZorenConfig.getConfigXML()), Arrays.toString(row));
        }
        // The phone's own log has time, process and thread, and the entry's own line end.
        final String real = "(?m)^(\\w+) ([A-Z]) \\S+ \\S+ +\\d+ +\\d+ (.*)\n\n";
        assertEquals(log.toString(), Files.readString(LOG).replaceAll(real, "$2/$1: $3\n"));
        System.out.println("[   DEVICE ] log: " + log.toString().lines().count()
                + " entries; libcrypto: 16 bytes to 16 MiB sealed here and opened by it");
    }

    @Test
    void namesOneTotalEach() throws IOException {
        final String line = "2 lo 0x0 4294967295 0 18446744073709551614 2 3 4\n";
        Files.writeString(ROOT.resolve("proc/net/xt_qtaguid/stats"), line);
        final List<ToLongBiFunction<String, Integer>> methods =
                List.of(ZorenTrafficStats::getRxBytes, ZorenTrafficStats::getRxPackets,
                        ZorenTrafficStats::getTxBytes, ZorenTrafficStats::getTxPackets);
        for (int i = 0; i < 4; ++i) {
            final ToLongBiFunction<String, Integer> method = methods.get(i);
            assertEquals(i == 0 ? -2 : i + 1, method.applyAsLong("lo", -1));
            assertEquals(0, method.applyAsLong("LO", -1));
            assertNull(assertThrows(NullPointerException.class, () -> method.applyAsLong(null, -1))
                    .getMessage());
        }
        System.out.println("[   DEVICE ] native helper: 4 null pointer exceptions, no message");
    }
}
