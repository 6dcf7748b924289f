package zoren.cli;

import static java.awt.image.BufferedImage.*;
import static org.junit.jupiter.api.Assertions.*;

import android.graphics.Bitmap;
import com.drew.imaging.ImageMetadataReader;
import java.awt.color.*;
import java.awt.image.*;
import java.io.*;
import java.nio.file.*;
import java.util.*;
import java.util.stream.IntStream;
import java.util.zip.*;
import javax.imageio.*;
import javax.imageio.stream.ImageOutputStream;
import org.junit.jupiter.api.*;
import org.junit.jupiter.api.io.TempDir;
import org.junit.jupiter.params.ParameterizedTest;
import org.junit.jupiter.params.provider.CsvSource;

/** What is read of pictures of every kind, whole, turned and damaged. */
class PicturesTest extends CliTest {
    private static final int AFTER_HEADER = 33; // in a PNG: signature and IHDR
    private static final Path SAMPLE = Path.of(System.getProperty("zoren.samples"), "photo.jpg");

    /** Pictures are worked on in memory: there is no place for a cache on the disk. */
    @BeforeAll
    static void takeTheCacheAway(@TempDir Path cache) throws IOException {
        ImageIO.setCacheDirectory(cache.toFile());
        Files.delete(cache);
    }

    /** The last of 3 x 2 pixels comes with the file's samples, alpha not multiplied in. */
    @ParameterizedTest
    @CsvSource({
        // bits a sample, samples of the pixel, the pixel read
        "8, BC, FFBCBCBC",
        "8, BC 01, 01BCBCBC",
        "8, 01 80 FF 00, 000180FF",
        "16, 0081, FF010101",
        "16, 7FFF 8000, 807F7F7F",
        "16, FF7E FF7F 0101, FFFEFF01",
        "16, 0081 8000 FFFF 7FFF, 7F0180FF",
    })
    void keepsSamples(int bits, String pixel, String argb) throws Exception {
        final int[] samples =
                Arrays.stream(pixel.split(" ")).mapToInt(s -> Integer.parseInt(s, 16)).toArray();
        final boolean gray = samples.length < 3;
        final boolean alpha = samples.length % 2 == 0;
        final int type = bits == 8 ? DataBuffer.TYPE_BYTE : DataBuffer.TYPE_USHORT;
        final int[] bands = IntStream.range(0, samples.length).toArray();
        final ColorSpace space =
                ColorSpace.getInstance(gray ? ColorSpace.CS_GRAY : ColorSpace.CS_sRGB);
        final BufferedImage image =
                ImageTypeSpecifier.createInterleaved(space, bands, type, alpha, false)
                        .createBufferedImage(3, 2);
        image.getRaster().setPixel(2, 1, samples);
        save(image, "a.png");
        assertEquals(argb, lastPixel("a.png"));
    }

    @Test
    void keepsPalettesKeysAndGrayJpegs() throws Exception {
        save(filled(3, 2, TYPE_BYTE_INDEXED, 0x336699), "a.png");
        assertEquals("FF336699", lastPixel("a.png"));
        final int[] colors = {0, 0x40FF8001, -1, -1};
        final IndexColorModel model =
                new IndexColorModel(2, 4, colors, 0, true, -1, DataBuffer.TYPE_BYTE);
        final BufferedImage packed = new BufferedImage(3, 2, TYPE_BYTE_BINARY, model);
        packed.getRaster().setSample(2, 1, 0, 1);
        save(packed, "a.png");
        assertEquals("40FF8001", lastPixel("a.png"));
        for (final int key : new int[] {10, 11}) { // the red of the colour that is transparent
            save(filled(3, 2, TYPE_INT_RGB, 0x102030), "a.png");
            splice("a.png", AFTER_HEADER, 0, chunk("tRNS", "00" + key + "00200030"));
            assertEquals(key == 10 ? "00102030" : "FF102030", lastPixel("a.png"));
        }
        save(filled(3, 2, TYPE_INT_RGB, 0x102030), "lost.png");
        splice("lost.png", AFTER_HEADER, 0, chunk("tRNS", "0000000000"));
        fails("gray ./lost.png", "./lost.png: is not a whole picture: tRNS chunk");
        final BufferedImage steps = filled(16, 9, TYPE_INT_RGB, 0x102030);
        steps.setRGB(5, 6, 0xFFFF00);
        try (ImageOutputStream to = ImageIO.createImageOutputStream(file("i.png").toFile())) {
            final ImageWriter writer = ImageIO.getImageWritersByFormatName("png").next();
            final ImageWriteParam param = writer.getDefaultWriteParam();
            param.setProgressiveMode(ImageWriteParam.MODE_DEFAULT); // interlaced
            writer.setOutput(to);
            writer.write(null, new IIOImage(steps, null, null), param);
        }
        assertEquals(0, run("blur ./i.png ./o.png -r 0"), err);
        assertArrayEquals(load("i.png"), load("o.png"));
        save(filled(3, 2, TYPE_BYTE_GRAY, 0xBCBCBC), "a.jpg"); // a linear 128, as samples are
        assertEquals("FF808080", lastPixel("a.jpg"));
    }

    /** Orientation o shows the stored top-left block at the place of the shown picture listed. */
    @ParameterizedTest
    @CsvSource({
        "0,0,0", "1,0,0", "2,3,0", "3,3,1", "4,0,1", "5,0,0", "6,1,0", "7,1,3", "8,0,3", "9,0,0"
    })
    void turnsPicturesUpright(int orientation, int x, int y) throws IOException {
        final BufferedImage image = filled(64, 32, TYPE_INT_RGB, 0);
        image.createGraphics().fillRect(0, 0, 16, 16);
        save(image, "turned.jpg");
        save(image, "turned.png");
        final String entry = "0001" + "0112000300000001000" + orientation + "0000" + "7FFFFFFE"; // no second folder
        final String tiff = "4D4D002A00000008" + entry; // big-endian
        splice("turned.jpg", 2, 0, "FFE10022457869660000" + tiff);
        final int beforeTheEnd = (int) Files.size(file("turned.png")) - 12;
        final int offset = orientation % 2 == 0 ? AFTER_HEADER : beforeTheEnd;
        splice("turned.png", offset, 0, chunk("eXIf", tiff));
        for (final String name : new String[] {"turned.jpg", "turned.png"}) {
            assertEquals(0, run("blur ./" + name + " ./upright.png --radius=0.1"), err);
            final int[] shown = load("upright.png");
            final int width = orientation < 5 || orientation > 8 ? 64 : 32;
            assertTrue((shown[(16 * y + 8) * width + 16 * x + 8] & 0xFF) > 128, name);
        }
    }

    @ParameterizedTest
    @CsvSource({
        // offset in the sample, how many bytes there give way, to which bytes, what is said
        "5000, 2, FFD9, premature end of data segment",
        "11000, 4, 00000000, bad Huffman code",
        "20000, 90, '', extraneous bytes before marker",
        "259334, 2, '', Truncated File",
        // The picture is all there, whatever else the decoder minds.
        "11, 1, 09, ", // JFIF's version
        "376, 1, 00, ", // the first scan's last coefficient
        "2, 0, FFE200224943435F50524F46494C45000101000000000000000000000000000000000000, ",
    })
    void tellsDamageFromHarmlessFaults(int offset, int old, String digits, String reason)
            throws IOException {
        Files.copy(SAMPLE, file("a.jpg"));
        splice("a.jpg", offset, old, digits);
        if (reason == null) {
            assertEquals(0, run("gray ./a.jpg"), err);
        } else {
            fails("gray ./a.jpg", reason);
        }
    }

    /** By content, whatever the name. */
    @Test
    void readsWhatThePlatformAndItsPlugInsRead() throws Exception {
        final String lossless =
                "524946461C000000574542505650384C0F0000002F024000000710FD8FFE0722A2FF0100";
        final BufferedImage image = filled(3, 2, TYPE_INT_RGB, 0xFF0000);
        for (final String kind : new String[] {"gif", "bmp", "tiff"}) {
            assertTrue(ImageIO.write(image, kind, file(kind).toFile()));
            assertEquals("FFFF0000", lastPixel(kind), kind);
        }
        final byte[] littleEndian = Arrays.copyOf(new byte[] {'I', 'I', 42}, Format.HEAD_BYTES);
        assertEquals(Format.TIFF, Format.of(littleEndian)); // the writer's is big-endian
        Files.write(file("webp"), HexFormat.of().parseHex(lossless));
        assertEquals("FFFF0000", lastPixel("webp"));
        final WritableRaster cmyk =
                Raster.createInterleavedRaster(DataBuffer.TYPE_BYTE, 3, 2, 4, null);
        try (ImageOutputStream to = ImageIO.createImageOutputStream(file("cmyk").toFile())) {
            final ImageWriter writer = ImageIO.getImageWritersByFormatName("jpeg").next();
            writer.setOutput(to);
            writer.write(new IIOImage(cmyk, null, null));
        }
        splice("cmyk", 2, 0, "FFEE000E41646F626500640000000000");
        assertEquals("FF000000", lastPixel("cmyk")); // by its marker, 0 is full ink
    }

    /** Each note in a file of each kind, out of one of each kind. */
    @Test
    void keepsWhatThePictureIsMeantToLookLike() throws Exception {
        final byte[] profile = ICC_Profile.getInstance(ColorSpace.CS_LINEAR_RGB).getData();
        final byte[] zipped =
                new DeflaterInputStream(new ByteArrayInputStream(profile)).readAllBytes();
        final String exif = // Make, orientation 6
                "4D4D002A000000080002010F00020000000441636D00011200030000000100060000" + "00000000";
        save(filled(3, 2, TYPE_INT_RGB, 0x404040), "a.png");
        final String chunks =
                chunk("eXIf", exif) + chunk("pHYs", "00002E230000171201")
                        + chunk("iCCP", "780000" + HexFormat.of().formatHex(zipped))
                        + chunk("gAMA", "0000ABCD");
        splice("a.png", AFTER_HEADER, 0, chunks);
        for (final String step : "a.png b.png,a.png c.jpg,c.jpg d.png,c.jpg e.jpg".split(",")) {
            final String[] names = step.split(" ");
            assertEquals(0, run("blur -r 0 ./" + names[0] + " ./" + names[1]), err);
            final String notes = notes(names[1]);
            assertTrue(notes.contains("[ICC Profile] Profile Size - " + profile.length), notes);
            final String upright = exif.replace("00060000", "00010000");
            assertTrue(hex(names[1]).contains(upright), "EXIF " + step);
            final boolean png = names[1].endsWith("png");
            final String across = png ? "Pixels Per Unit X - 59" : "X Resolution - 150 dots";
            final String down = png ? "Pixels Per Unit Y - 118" : "Y Resolution - 300 dots";
            assertTrue(notes.contains(across) && notes.contains(down), notes);
            assertEquals(names[1].equals("b.png"), notes.contains("Image Gamma - 0.44"), notes);
            assertEquals(2, ImageIO.read(file(names[1]).toFile()).getWidth());
            run("gray ./" + names[1]);
            assertTrue(out.startsWith("64\t"), "samples are as they were: " + out);
            final String stripped = "stripped_" + names[1];
            assertEquals(0, run("blur -r 0 --strip ./" + names[0] + " ./" + stripped), err);
            assertFalse(notes(stripped).matches("(?s).*(ICC Profile|Gamma|PNG-pHYs|150 dots).*"));
            assertFalse(hex(stripped).contains("41636D00"));
        }
    }

    private String hex(String name) throws IOException {
        return HexFormat.of().withUpperCase().formatHex(Files.readAllBytes(file(name)));
    }

    /** Puts bytes, in hexadecimal digits, in place of {@code old} ones that a file has. */
    private void splice(String name, int offset, int old, String digits) throws IOException {
        final String all = hex(name);
        final String changed =
                all.substring(0, 2 * offset) + digits + all.substring(2 * (offset + old));
        Files.write(file(name), HexFormat.of().parseHex(changed));
    }

    private String notes(String name) throws Exception {
        final StringBuilder notes = new StringBuilder();
        ImageMetadataReader.readMetadata(file(name).toFile()).getDirectories().forEach(
                directory -> directory.getTags().forEach(tag -> notes.append(tag).append("\n")));
        return notes.toString();
    }

    private String lastPixel(String name) throws Failure {
        final Bitmap bitmap = Pictures.read(Source.of(file(name)), new PixelBudget(6)).bitmap;
        assertEquals(6, bitmap.getWidth() * bitmap.getHeight());
        return String.format("%08X", bitmap.getPixel(2, 1));
    }

    /** A PNG's chunk, in hexadecimal digits as its data are. */
    private static String chunk(String type, String data) {
        final String body = HexFormat.of().formatHex(type.getBytes()) + data;
        final CRC32 crc = new CRC32();
        crc.update(HexFormat.of().parseHex(body));
        return String.format("%08X%s%08X", data.length() / 2, body, crc.getValue());
    }
}
