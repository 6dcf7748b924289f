package zoren.cli;

import static java.awt.image.BufferedImage.*;
import static org.junit.jupiter.api.Assertions.*;

import java.awt.image.BufferedImage;
import java.io.IOException;
import java.nio.file.Files;
import java.util.Arrays;
import java.util.Random;
import java.util.Set;
import org.junit.jupiter.api.Test;
import org.junit.jupiter.params.ParameterizedTest;
import org.junit.jupiter.params.provider.CsvSource;
import zoren.net.ZorenTrafficStats;

/** What the commands print, and in which order they work. */
class ZorenTest extends CliTest {
    @Test
    void printsCastsAsTextAndJson() throws IOException {
        save(filled(10, 10, TYPE_INT_RGB, 0xFF0000), "red.png");
        save(filled(2, 2, TYPE_BYTE_GRAY, 0xFF808080), "gray.png");
        save(filled(1, 10, TYPE_INT_RGB, 0), "thin.png");
        run("cast ./red.png ./gray.png --saturation=50 --brightness=80");
        assertEquals(at("#CC7F66\t./red.png\nnone\t./gray.png\n"), out);
        assertEquals(1, run("cast --json ./red.png ./thin.png ./gray.png"));
        final String error = "./thin.png: is narrower or lower than 2 pixels, which has no measure";
        final String json =
                "[{'path':'./red.png','cast':'#FF3F00'},{'path':'./thin.png','cast':null,'error':'"
                        + error + "'},{'path':'./gray.png','cast':null}]\n";
        assertEquals(at(json), out.replace('"', '\''));
        assertEquals(at("zoren: " + error + "\n"), err);
    }

    @Test
    void blursAFileInPlaceAndIntoAnotherKind() throws IOException {
        final BufferedImage corner = filled(2, 2, TYPE_INT_ARGB, 0);
        corner.setRGB(0, 0, -1);
        save(corner, "picture.png");
        assertEquals(0, run("blur ./picture.png ./picture.jpeg --radius=1"), err);
        assertEquals(0, run("blur ./picture.png ./picture.png --radius=1"), err);
        final int[] blurred = {0xFF868686, 0xFF323232, 0xFF323232, 0xFF121212};
        assertArrayEquals(blurred, load("picture.png"));
        run("blur ./picture.png ./mask.png --radius=0 --color=#80FF0000");
        assertEquals(0xFFC14242, load("mask.png")[0]);
        save(filled(2, 3, TYPE_INT_ARGB, 0x01C80300), "faint.png");
        run("blur ./faint.png ./faint.png --radius=0.1");
        assertEquals(0x01C80300, load("faint.png")[5], "alpha stays straight without a blur");
    }

    @Test
    void blursAFolderAndReportsWhatFails() throws IOException {
        Files.createDirectory(folder.resolve("in"));
        save(filled(4, 4, TYPE_INT_RGB, 0x102030), "in/b.PNG");
        Files.writeString(folder.resolve("in/a.png"), "no picture");
        assertEquals(1, run("blur ./in ./new/out --radius=2"));
        assertEquals(at("zoren: ./in/a.png: is not a PNG or JPEG picture\n"), err);
        assertEquals(Set.of("b.PNG"), names("new/out"));
        assertEquals(0xFF102030, load("new/out/b.PNG")[15]);
    }

    @Test
    void failsWithOneLineAndLeavesOutputsAlone() throws IOException {
        Files.deleteIfExists(CONFIG);
        Files.deleteIfExists(STATISTICS);
        save(filled(65536, 2, TYPE_INT_RGB, 0), "wide.png"); // too wide for JPEG
        for (final String name : new String[] {"cut.png", "cut.jpg"}) {
            save(filled(64, 64, TYPE_INT_RGB, 0x123456), name);
            final byte[] whole = Files.readAllBytes(folder.resolve(name));
            Files.write(folder.resolve(name), Arrays.copyOf(whole, whole.length - 30));
        }
        Files.writeString(folder.resolve("old.png"), "as it was");
        Files.writeString(folder.resolve("zero.xml"), "a\0b");
        final Set<String> before = names("");
        final String[] failures = {
            // what is run, part of the line that it prints
            "blur ./cut.png ./old.png --radius 3", "./cut.png: is not a whole picture",
            "blur ./cut.jpg ./old.png --radius 3", "./cut.jpg: is not a whole picture",
            "blur ./none.png ./old.png --radius 3", "./none.png: no such file",
            "blur ./wide.png ./no/such.png --radius 0", "there is no folder ./no",
            "blur ./wide.png ./wide.jpg --radius 0", "cannot write ./wide.jpg: ",
            "blur ./ ./ --radius 3", "is the folder that is read",
            "seal ./zero.xml ./sealed", "./zero.xml: holds a zero byte",
            "seal ./cut.png ./sealed", "./cut.png: is not UTF-8",
            "config", CONFIG + ": there is no configuration file",
            "config --device-root elsewhere", "takes effect only through the launcher",
            "traffic lo 1", STATISTICS + ": the traffic statistics cannot be read",
        };
        for (int i = 0; i < failures.length; i += 2) {
            assertEquals(1, run(failures[i]), failures[i]);
            assertTrue(err.startsWith("zoren: ") && err.contains(at(failures[i + 1])), err);
            assertEquals(1, err.lines().count(), err);
        }
        assertEquals(before, names(""), "nothing is written, nothing temporary left");
        assertEquals("as it was", Files.readString(folder.resolve("old.png")));
    }

    @ParameterizedTest
    @CsvSource({
        // what is run, part of the line that it prints
        "--, a command is needed",
        "blur a.png b.gif --radius 1, OUTPUT must end in",
        "blur a.png b.png --radius NaN, --radius must be",
        "blur a.png b.png --radius 23170.75, --radius must be",
        "blur a.png b.png --radius 1 --color FF8800, AARRGGBB",
        "cast a.png --saturation 101, --saturation must be",
        "traffic wlan0 4294967296, is not a 32-bit number",
    })
    void refusesWrongUsage(String line, String named) {
        assertEquals(2, run(line));
        assertTrue(err.startsWith("zoren: ") && err.split("\n")[0].contains(named), err);
        assertTrue(err.contains("Usage: zoren"), err);
    }

    @Test
    void opensWhatItSealed() throws IOException {
        for (final String text : new String[] {"", "<a>sixteen b</a>", "<n v='\ud83d\ude00'/>"}) {
            Files.writeString(folder.resolve("in.xml"), text);
            assertEquals(0, run("seal ./in.xml ./sealed"), err);
            Files.write(CONFIG, Files.readAllBytes(folder.resolve("sealed")));
            assertEquals(0, run("config"), err);
            assertEquals(text + "\n", out);
        }
        for (int seed = 0; seed < 200; ++seed) { // no configuration, or a text that is no UTF-8
            final byte[] bytes = new byte[64];
            new Random(seed).nextBytes(bytes);
            Files.write(CONFIG, bytes);
            assertTrue(run("config") <= 1, err);
        }
        Files.write(CONFIG, new byte[17]);
        assertEquals(1, run("config"));
        assertTrue(err.contains("is not a configuration file"), err);
    }

    @Test
    void printsTrafficTotals() throws IOException {
        Files.writeString(STATISTICS, "2 lo 0x0 4294967295 0 18446744073709551614 2 3 4\n");
        assertEquals(0, run("traffic lo -1"), err);
        final String totals = "rx-bytes 18446744073709551614 rx-packets 2 tx-bytes 3 tx-packets 4";
        assertEquals(totals, out.strip().replaceAll("[\t\n]", " "));
        run("traffic lo 4294967295 --counter=rx-bytes --json");
        final String json = "{'interface':'lo','uid':4294967295,'rx-bytes':18446744073709551614}\n";
        assertEquals(json, out.replace('"', '\''));
        assertThrows(NullPointerException.class, () -> ZorenTrafficStats.getRxBytes(null, 1));
    }
}
