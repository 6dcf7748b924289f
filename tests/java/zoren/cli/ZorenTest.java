package zoren.cli;

import static java.awt.image.BufferedImage.*;
import static org.junit.jupiter.api.Assertions.*;

import java.awt.image.BufferedImage;
import java.io.IOException;
import java.io.PrintWriter;
import java.io.StringWriter;
import java.nio.ByteBuffer;
import java.nio.file.Files;
import java.nio.file.Path;
import java.util.Arrays;
import java.util.HexFormat;
import java.util.Random;
import java.util.Set;
import javax.imageio.ImageIO;
import org.junit.jupiter.api.Test;
import org.junit.jupiter.api.io.TempDir;
import org.junit.jupiter.params.ParameterizedTest;
import org.junit.jupiter.params.provider.CsvSource;
import zoren.net.ZorenTrafficStats;

/** Runs as uid 0, with the device root mapped. */
class ZorenTest {
    private static final String ROOT = System.getenv("ZOREN_DEVICE_ROOT");
    private static final Path CONFIG = Path.of(ROOT, "system/etc/jpsp");
    private static final Path STATISTICS = Path.of(ROOT, "proc/net/xt_qtaguid/stats");

    @TempDir Path folder;
    private String out;
    private String err;

    @Test
    void measuresPicturesOfEveryKind() throws IOException {
        // The sRGB gray 188 is 128 in a gray picture, whose samples Java takes for linear.
        save(filled(2, 2, TYPE_BYTE_GRAY, 0xFFBCBCBC), "gray.png");
        save(filled(2, 2, TYPE_USHORT_GRAY, 0xFFBCBCBC), "gray16.png");
        save(filled(2, 2, TYPE_BYTE_INDEXED, 0xFFFF0000), "palette.png");
        save(filled(3, 2, TYPE_INT_ARGB, 0x016496C8), "alpha.png");
        run("gray ./gray.png ./gray16.png ./palette.png ./alpha.png");
        assertEquals("128\n128\n76\n140\n", out.replaceAll("\t.*", ""), err);
    }

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

    /** Orientation o shows the stored top-left block at the place of the shown picture listed. */
    @ParameterizedTest
    @CsvSource({"1,0,0", "2,3,0", "3,3,1", "4,0,1", "5,0,0", "6,1,0", "7,1,3", "8,0,3"})
    void turnsPicturesUpright(int orientation, int x, int y) throws IOException {
        final BufferedImage image = filled(64, 32, TYPE_INT_RGB, 0);
        image.createGraphics().fillRect(0, 0, 16, 16);
        save(image, "turned.jpg");
        final byte[] jpeg = Files.readAllBytes(folder.resolve("turned.jpg"));
        final String exif = "FFE10022457869660000" + "4D4D002A00000008"; // big-endian TIFF
        final String entry = "0001" + "0112000300000001000" + orientation + "0000" + "00000000";
        final byte[] segment = HexFormat.of().parseHex(exif + entry);
        final ByteBuffer file = ByteBuffer.allocate(jpeg.length + segment.length);
        file.put(jpeg, 0, 2).put(segment).put(jpeg, 2, jpeg.length - 2);
        Files.write(folder.resolve("turned.jpg"), file.array());
        assertEquals(0, run("blur ./turned.jpg ./upright.png --radius=0.1"), err);
        final int[] shown = load("upright.png");
        final int width = orientation < 5 ? 64 : 32;
        assertTrue((shown[(16 * y + 8) * width + 16 * x + 8] & 0xFF) > 128);
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

    /** Runs a command of words parted by blanks; ./ stands for the test's folder. */
    private int run(String line) {
        final StringWriter outText = new StringWriter();
        final StringWriter errText = new StringWriter();
        final String[] words = Arrays.stream(line.split(" ")).map(this::at).toArray(String[]::new);
        final int exitCode = Zoren.run(new PrintWriter(outText), new PrintWriter(errText), words);
        out = outText.toString();
        err = errText.toString();
        return exitCode;
    }

    private String at(String text) {
        return text.replace("./", folder + "/");
    }

    private Set<String> names(String directory) {
        return Set.of(folder.resolve(directory).toFile().list());
    }

    private static BufferedImage filled(int width, int height, int type, int color) {
        final BufferedImage image = new BufferedImage(width, height, type);
        for (int i = 0; i < width * height; ++i) {
            image.setRGB(i % width, i / width, color);
        }
        return image;
    }

    private void save(BufferedImage image, String name) throws IOException {
        final String format = name.endsWith("jpg") ? "jpeg" : "png";
        assertTrue(ImageIO.write(image, format, folder.resolve(name).toFile()));
    }

    private int[] load(String name) throws IOException {
        final BufferedImage image = ImageIO.read(folder.resolve(name).toFile());
        return image.getRGB(0, 0, image.getWidth(), image.getHeight(), null, 0, image.getWidth());
    }
}
