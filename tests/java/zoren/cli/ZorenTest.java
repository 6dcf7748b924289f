package zoren.cli;

import static java.awt.image.BufferedImage.*;
import static org.junit.jupiter.api.Assertions.*;

import com.fasterxml.jackson.core.*;
import java.awt.image.BufferedImage;
import java.io.IOException;
import java.nio.file.Files;
import java.util.*;
import org.junit.jupiter.api.Test;
import org.junit.jupiter.params.ParameterizedTest;
import org.junit.jupiter.params.provider.*;

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
    void blursAFolderInOrderAndGoesOnAfterAFailure() throws IOException {
        for (final String name : new String[] {"in", "in/d.png", "in/sub", "empty"}) {
            Files.createDirectory(file(name));
        }
        save(filled(4, 4, TYPE_INT_RGB, 0x102030), "in/b.PNG");
        for (final String name : new String[] {"a.png", "c.JpeG", "e.gif", "png"}) {
            Files.writeString(file("in/" + name), "no picture");
        }
        save(filled(4, 4, TYPE_INT_RGB, 0x405060), "in/sub/f");
        final String no = ": is not a picture (PNG, JPEG, WebP, GIF, BMP or TIFF)\n";
        final String failed = at("zoren: ./in/a.png" + no);
        final String closing =
                "zoren: 1 blurred, 3 failed, 4 skipped (2 in folders, see --recursive, 2 not"
                        + " pictures)\n";
        assertEquals(1, run("blur ./in ./empty ./new/out --radius=2"));
        final String none = at("zoren: ./in/c.JpeG" + no + "zoren: ./empty: holds no picture\n");
        assertEquals(failed + none + closing, err);
        assertEquals(Set.of("b.PNG"), names("new/out"));
        assertEquals(0xFF102030, load("new/out/b.PNG")[15]);
        System.setProperty("zoren.terminal", "true");
        run("blur ./in ./in/out -r2 -R -j1");
        System.clearProperty("zoren.terminal");
        assertTrue(err.contains("\r[" + ".".repeat(30) + "] 0/4\r\033[K" + failed), err);
        assertTrue(err.contains(failed + "\r[#######" + ".".repeat(23) + "] 1/4"), err);
        assertTrue(err.contains("#######] 4/4\r\033[Kzoren: 2 blurred, 2 failed, 2 skipped"), err);
        assertEquals(Set.of("b.PNG", "sub"), names("in/out"));
        Files.createSymbolicLink(file("here"), file("in"));
        run("blur ./in ./here/out -r2 -R"); // its own results are no inputs
        assertTrue(err.contains("zoren: 2 blurred, 2 failed"), err);
        assertEquals(Set.of("f.png"), names("in/out/sub"));
        fails("blur ./empty ./made --radius 1", "./empty: holds no picture");
        assertFalse(Files.exists(file("made")));
    }

    /** Many pictures, as cp takes them; on any number of threads messages keep their order. */
    @ParameterizedTest
    @ValueSource(ints = {1, 2, 7})
    void worksOnManyInputs(int jobs) throws IOException {
        final StringBuilder inputs = new StringBuilder();
        final StringBuilder measures = new StringBuilder();
        final StringBuilder errors = new StringBuilder();
        for (int i = 0; i < 20; ++i) {
            final String name = "./" + i + ".png";
            inputs.append(" ").append(name);
            if (i % 3 == 1) {
                errors.append("zoren: ").append(name).append(": no such file\n");
            } else { // the first ones take longest
                save(filled(400 / (i + 1) + 2, 300, TYPE_BYTE_GRAY, -1), i + ".png");
                measures.append("255\t").append(name).append("\n");
            }
        }
        assertEquals(1, run("gray -j" + jobs + " --max-pixels=121000" + inputs));
        assertEquals(at(measures.toString()), out);
        assertEquals(at(errors.toString()), err);
        assertEquals(1, run("blur -r 1 -j " + jobs + " -o ./made/here" + inputs));
        assertEquals(at(errors + "zoren: 13 blurred, 7 failed\n"), err);
        assertEquals(13, names("made/here").size());
        Files.copy(file("0.png"), file("again"));
        Files.createLink(file("again.png"), file("0.png"));
        assertEquals(1, run("blur -r 1 ./again ./0.png -o ./ -f png"));
        final String read = ".png: is a picture that is read; name another folder\nzoren: ";
        assertEquals(at("zoren: ./again" + read + "./0" + read + "0 blurred, 2 failed\n"), err);
        assertEquals(1, run("blur -r 1 ./0.png ./made/here/0.png ./2.png ./made"));
        assertEquals(
                at("zoren: ./made/here/0.png: another input was written to ./made/0.png\n"
                        + "zoren: 2 blurred, 1 failed\n"), err);
    }

    @Test
    void explainsACast() throws IOException {
        final BufferedImage image = filled(10, 10, TYPE_INT_RGB, 0x808080);
        final String[] rules = {"less than 5 %", "less than 40 %", "20 points", null};
        final int[][] hues = {{0xFF0000}, {0xFF0000, 0xFFFF00, 0x00FF00, 0x0000FF},
            {0xFF0000, 0x00FF00}, {0x00FF00, 0x00FF00, 0x00FF00, 0x00FF00, 0x0000FF}};
        for (int rule = 0; rule < rules.length; ++rule) {
            for (int i = 0; i < (rule == 0 ? 4 : 20); ++i) {
                image.setRGB(i % 10, i / 10, hues[rule][i % hues[rule].length]);
            }
            save(image, "a.png");
            assertEquals(0, run("cast --explain ./a.png"), err);
            assertEquals(rules[rule] != null, out.startsWith("none\t"), out);
            assertTrue(out.contains(rule == 3 ? "  a cast\n" : "  none: "), out);
            assertTrue(out.contains(rule == 3 ? "leading span: 80.00 %" : rules[rule]), out);
            assertTrue(out.contains("coloured: " + (rule == 0 ? "4.00" : "20.00") + " %"), out);
        }
        System.setProperty("zoren.output-terminal", "true");
        run("cast --explain ./a.png");
        System.clearProperty("zoren.output-terminal");
        assertTrue(out.contains("  120|" + "#".repeat(40) + "\n"), out);
        run("cast -s0 --explain ./a.png");
        assertTrue(out.startsWith("none\t") && out.contains("in white, which reads as none"), out);
        run("cast --explain --json ./a.png");
        assertTrue(out.contains("\"leading\":16") && out.contains("\"runnerUp\":16"), out);
    }

    /** Names that a shell, a terminal or JSON would choke on. */
    @Test
    void takesPicturesOfAnyName() throws IOException {
        final String names =
                " a b ,'q\",new\nline,back\\slash,*,\u00e9,\ud83d\ude00,\033[2J,\u009b2J";
        save(filled(2, 2, TYPE_INT_RGB, -1), "a.png");
        for (final String name : names.split(",")) {
            final String path = at("./" + name);
            assertEquals(0, runWords("blur", at("./a.png"), path + ".png", "--radius=1"), err);
            assertEquals(0, runWords("gray", path + ".png"), err);
            assertTrue(out.matches("255\t[^\\p{Cc}]+\n"), out);
            assertEquals(1, runWords("gray", "--json", path));
            assertTrue(err.matches("[^\\p{Cc}]+: no such file\n"), err);
            final JsonParser json = new JsonFactory().createParser(out);
            while (!"path".equals(json.getCurrentName())) {
                json.nextToken();
            }
            assertEquals(path, json.nextTextValue());
        }
    }

    @Test
    void failsWithOneLineAndLeavesOutputsAlone() throws IOException {
        Files.deleteIfExists(STATISTICS);
        save(filled(65536, 2, TYPE_INT_RGB, 0), "wide.png"); // too wide for JPEG
        final byte[] whole = Files.readAllBytes(file("wide.png"));
        Files.write(file("cut.png"), Arrays.copyOf(whole, whole.length - 30));
        Files.writeString(file("old.png"), "as it was");
        Files.writeString(file("zero.xml"), "a\0b");
        Files.createSymbolicLink(file("link"), folder);
        final Set<String> before = names("");
        fails("blur ./cut.png ./old.png --radius 3", "./cut.png: is not a whole picture");
        fails("blur ./wide.png ./no/such.png --radius 0", "there is no folder ./no");
        fails("blur ./wide.png ./wide.jpg --radius 0", "cannot write ./wide.jpg: ");
        fails("blur ./ ./link --radius 3", "is the folder that is read");
        fails("blur ./ ./old.png --radius 3", "./old.png: is a file, but");
        fails("seal ./zero.xml ./sealed", "./zero.xml: holds a zero byte");
        fails("seal ./cut.png ./sealed", "./cut.png: is not UTF-8");
        fails("blur ./wide.png ./a.png -r 1 --max-pixels 131071", "65536 x 2 pixels are more than");
        fails("seal ./old.png ./link/old.png", "./link/old.png: is the text itself");
        fails("seal ./old.png ./zero.xml/a", "./zero.xml: exists and is not a folder");
        fails("config --device-root elsewhere", "takes effect only through the launcher");
        fails("traffic lo 1", STATISTICS + ": the traffic statistics cannot be read");
        assertEquals(before, names(""), "nothing is written, nothing temporary left");
        assertEquals("as it was", Files.readString(folder.resolve("old.png")));
    }

    /** Two blanks hold an empty word. */
    @ParameterizedTest
    @CsvSource(
            delimiter = '|',
            value = {
                // a command, values that it takes, values that it refuses, part of what it says
                "blur ./a.png ./b.png -r|0;-0;23170.748;1e-9|"
                        + "-0.001;23170.75;1e39;NaN;Infinity;3d;0x1p2;1,5|--radius;no value",
                "blur ./a.png ./b.png --radius=1 --color=|00000000;#ffFFffFF;0x12345678|"
                        + ";FF8800;#FF8800;123456789;0x123456;+1234567;##1234567"
                        + "|AARRGGBB;write 40FF8800 for a tint;write 40123456",
                "blur -r1 -o ./b.png ./a.png --|quality=1;quality=100;max-pixels=4;strip;jobs=3|"
                        + "quality=0;quality=101;max-pixels=4e6;jobs=0;stripe;format=gif"
                        + "|must be;whole number;nearest is --strip;neither png",
                "blur ./a.png ./b|.jpeg --radius=1;.JPG --radius=1|.gif --radius=1;.png|"
                        + "OUTPUT must end in;--radius",
                "cast ./a.png --|saturation=0;saturation=100;brightness=0;brightness=100|"
                        + "saturation=-1;saturation=101;brightness=1.5;brightness=|--",
                "'traffic lo '|-2147483648;4294967295|-2147483649;4294967296;;1.0|"
                        + "32-bit number;whole number",
                "traffic lo 1 --counter=|rx-bytes;tx-packets|RX-BYTES;rx_bytes;|is none of",
                "'gray '|./a.png|;--no;--json|path;Unknown;INPUT",
                "'blur '|./a.png ./c.png -r 1|' b.png -r 1;./a.png  --radius 1'|path;''",
                "|--help;help blur;config --help;seal -h;generate-completion --help|;--;more|"
                        + "command;Unmatched",
            })
    void keepsToTheRangesOfItsOptions(String command, String taken, String refused, String named)
            throws IOException {
        save(filled(2, 2, TYPE_INT_RGB, 0x808080), "a.png");
        Files.writeString(STATISTICS, "");
        final String start = command == null ? "" : command;
        for (final String value : taken.split(";")) {
            assertEquals(0, run(start + value), start + value + "\n" + err);
            assertTrue(!value.contains("help") || out.contains("Exit codes:"), out);
        }
        final Set<String> before = names("");
        for (final String value : refused.split(";", -1)) {
            assertEquals(2, run(start + value), start + value);
            final String line = "zoren: .*(" + named.replace(';', '|') + ").*; see zoren.*\n";
            assertTrue(err.matches(line), start + value + "\n" + err);
        }
        assertEquals(before, names(""));
    }

    @Test
    void opensWhatItSealed() throws IOException {
        final int limit = 16 << 20;
        final String most = "x".repeat(limit - 1);
        for (final String text : List.of("", "<\ud83d\ude00", "a\n", most.substring(0, 16), most)) {
            Files.writeString(file("in.xml"), text);
            assertEquals(0, run("seal ./in.xml ./sealed"), err);
            Files.write(CONFIG, Files.readAllBytes(file("sealed")));
            assertEquals(0, run("config"), err);
            assertTrue(out.equals(text.endsWith("\n") ? text : text + "\n"), "" + text.length());
        }
        assertEquals(limit, Files.size(CONFIG));
        final String beyond = "\ud83d\ude00".repeat(limit / 6 + 1); // in CESU-8, not in UTF-8
        for (final String text : new String[] {"x".repeat(limit), beyond}) {
            Files.writeString(file("in.xml"), text);
            fails("seal ./in.xml ./sealed", "./in.xml: is too large");
        }
        for (final int size : new int[] {0, 15, 17, limit + 16}) {
            Files.write(CONFIG, new byte[size]);
            fails("config", CONFIG + ": is not a configuration file");
        }
        Files.write(CONFIG, new byte[16]);
        fails("config", CONFIG + ": was sealed under another key or is damaged");
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
    }
}
