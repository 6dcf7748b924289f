package zoren.cli;

import static org.junit.jupiter.api.Assertions.*;

import java.awt.image.BufferedImage;
import java.io.*;
import java.nio.file.*;
import java.util.*;
import javax.imageio.ImageIO;
import org.junit.jupiter.api.io.TempDir;

/** Runs commands in a folder of the test's own, as uid 0, with the device root mapped. */
abstract class CliTest {
    static final String ROOT = System.getenv("ZOREN_DEVICE_ROOT");
    static final Path CONFIG = Path.of(ROOT, "system/etc/jpsp");
    static final Path STATISTICS = Path.of(ROOT, "proc/net/xt_qtaguid/stats");

    @TempDir Path folder;
    String out;
    String err;

    /** Runs a command of words parted by blanks; ./ stands for the test's folder. */
    int run(String line) {
        return runWords(Arrays.stream(line.split(" ", -1)).map(this::at).toArray(String[]::new));
    }

    int runWords(String... words) {
        final StringWriter outText = new StringWriter();
        final StringWriter errText = new StringWriter();
        final int exitCode = Zoren.run(new PrintWriter(outText), new PrintWriter(errText), words);
        out = outText.toString();
        err = errText.toString();
        return exitCode;
    }

    /** Runs a command that must fail with one line that holds {@code reason}. */
    void fails(String line, String reason) {
        assertEquals(1, run(line), line);
        assertTrue(err.matches("zoren: .*\n") && err.contains(at(reason)), line + "\n" + err);
    }

    String at(String text) {
        return text.replace("./", folder + "/");
    }

    Path file(String name) {
        return folder.resolve(name);
    }

    Set<String> names(String directory) {
        return Set.of(file(directory).toFile().list());
    }

    static BufferedImage filled(int width, int height, int type, int color) {
        final BufferedImage image = new BufferedImage(width, height, type);
        for (int i = 0; i < width * height; ++i) {
            image.setRGB(i % width, i / width, color);
        }
        return image;
    }

    void save(BufferedImage image, String name) throws IOException {
        final String format = name.endsWith("jpg") ? "jpeg" : "png";
        assertTrue(ImageIO.write(image, format, file(name).toFile()));
    }

    int[] load(String name) throws IOException {
        final BufferedImage image = ImageIO.read(file(name).toFile());
        return image.getRGB(0, 0, image.getWidth(), image.getHeight(), null, 0, image.getWidth());
    }
}
