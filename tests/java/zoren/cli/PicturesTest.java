package zoren.cli;

import static java.awt.image.BufferedImage.*;
import static org.junit.jupiter.api.Assertions.*;

import android.graphics.Bitmap;
import com.drew.imaging.ImageMetadataReader;
import com.drew.metadata.Directory;
import java.awt.Transparency;
import java.awt.color.*;
import java.awt.image.*;
import java.io.*;
import java.nio.ByteBuffer;
import java.nio.charset.StandardCharsets;
import java.nio.file.*;
import java.util.*;
import java.util.zip.*;
import javax.imageio.*;
import javax.imageio.stream.ImageOutputStream;
import org.junit.jupiter.api.Test;
import org.junit.jupiter.params.ParameterizedTest;
import org.junit.jupiter.params.provider.CsvSource;

/** What is read of pictures of every kind, whole, turned and damaged. */
class PicturesTest extends CliTest {
    private static final int AFTER_HEADER = 33; // in a PNG: signature and IHDR
    private static final Path SAMPLE = Path.of(System.getProperty("zoren.samples"), "photo.jpg");

    /** The last of 3 x 2 pixels comes with the file's samples, alpha not multiplied in. */
    @ParameterizedTest
    @CsvSource({
        // bits a sample, samples of the pixel, the pixel read
        "8, BC, FFBCBCBC",
        "8, BC 01, 01BCBCBC",
        "8, 01 80 FF 00, 000180FF",
        "16, 0080, FF000000",
        "16, 0081, FF010101",
        "16, 7FFF 8000, 807F7F7F",
        "16, FF7E FF7F 0101, FFFEFF01",
        "16, 0081 8000 FFFF 7FFF, 7F0180FF",
    })
    void keepsSamples(int bits, String pixel, String argb) throws IOException {
        final int[] samples =
                Arrays.stream(pixel.split(" ")).mapToInt(s -> Integer.parseInt(s, 16)).toArray();
        final boolean gray = samples.length < 3;
        final boolean alpha = samples.length % 2 == 0;
        final int type = bits == 8 ? DataBuffer.TYPE_BYTE : DataBuffer.TYPE_USHORT;
        final WritableRaster raster =
                Raster.createInterleavedRaster(type, 3, 2, samples.length, null);
        raster.setPixel(2, 1, samples);
        final ColorSpace space =
                ColorSpace.getInstance(gray ? ColorSpace.CS_GRAY : ColorSpace.CS_sRGB);
        final int transparency = alpha ? Transparency.TRANSLUCENT : Transparency.OPAQUE;
        final ComponentColorModel model =
                new ComponentColorModel(space, alpha, false, transparency, type);
        save(new BufferedImage(model, raster, false, null), "a.png");
        assertEquals(argb, lastPixel("a.png"));
    }

    @Test
    void keepsPalettesKeysAndGrayJpegs() throws IOException {
        final int[][] palettes = {{0, 0x40FF8001}, {0xFF000000, 0xFFAAAAAA, 0xFF555555, -1}};
        for (final int[] colors : palettes) {
            final int bits = colors.length == 2 ? 1 : 2;
            final IndexColorModel model =
                    new IndexColorModel(
                            bits, colors.length, colors, 0, bits == 1, -1, DataBuffer.TYPE_BYTE);
            final BufferedImage image = new BufferedImage(3, 2, TYPE_BYTE_BINARY, model);
            image.getRaster().setSample(2, 1, 0, 1);
            save(image, "a.png");
            assertEquals(String.format("%08X", colors[1]), lastPixel("a.png"));
        }
        for (final int key : new int[] {0x10, 0x11}) { // the colour that is transparent
            save(filled(3, 2, TYPE_INT_RGB, 0x102030), "a.png");
            insert("a.png", AFTER_HEADER, chunk("tRNS", new byte[] {0, (byte) key, 0, 32, 0, 48}));
            assertEquals(key == 0x10 ? "00102030" : "FF102030", lastPixel("a.png"));
        }
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
        final BufferedImage gray = new BufferedImage(3, 2, TYPE_BYTE_GRAY);
        gray.getRaster().setPixels(0, 0, 3, 2, new int[] {188, 188, 188, 188, 188, 188});
        save(gray, "a.jpg");
        assertEquals("FFBCBCBC", lastPixel("a.jpg"));
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
        final String entry = "0001" + "0112000300000001000" + orientation + "0000" + "00000000";
        final String tiff = "4D4D002A00000008" + entry; // big-endian
        insert("turned.jpg", 2, HexFormat.of().parseHex("FFE10022457869660000" + tiff));
        final int beforeTheEnd = (int) Files.size(file("turned.png")) - 12;
        insert("turned.png", orientation % 2 == 0 ? AFTER_HEADER : beforeTheEnd,
                chunk("eXIf", HexFormat.of().parseHex(tiff)));
        for (final String name : new String[] {"turned.jpg", "turned.png"}) {
            assertEquals(0, run("blur ./" + name + " ./upright.png --radius=0.1"), err);
            final int[] shown = load("upright.png");
            final int width = orientation < 5 || orientation > 8 ? 64 : 32;
            assertTrue((shown[(16 * y + 8) * width + 16 * x + 8] & 0xFF) > 128, name);
        }
    }

    @ParameterizedTest
    @CsvSource({
        // the bytes changed, offset from the start or the end, what is said
        "40, 5000, premature end of data segment",
        "40, 15000, bad Huffman code",
        "40, 20000, extraneous bytes before marker",
        "2, -2, Truncated File",
        "30, -30, Truncated File",
    })
    void refusesADamagedJpeg(int bytes, int offset, String reason) throws IOException {
        byte[] jpeg = Files.readAllBytes(SAMPLE);
        if (offset < 0) {
            jpeg = Arrays.copyOf(jpeg, jpeg.length + offset);
        } else {
            Arrays.fill(jpeg, offset, offset + bytes, (byte) 0);
        }
        Files.write(file("a.jpg"), jpeg);
        fails("gray ./a.jpg", "./a.jpg: is not a whole picture: ");
        assertTrue(err.contains(reason), err);
    }

    /** The picture is all there, whatever else the decoder minds. */
    @Test
    void acceptsAJpegWithHarmlessFaults() throws IOException {
        final String profile = "FFE20022" + "4943435F50524F46494C4500" + "0101" + "00".repeat(18);
        final int firstScan = 364; // its marker
        for (int fault = 0; fault < 3; ++fault) {
            final byte[] jpeg = Files.readAllBytes(SAMPLE);
            jpeg[11] = (byte) (fault == 0 ? 9 : 1); // JFIF's version
            jpeg[firstScan + 12] = (byte) (fault == 1 ? 0 : 63); // the scan's last coefficient
            Files.write(file("a.jpg"), jpeg);
            if (fault == 2) {
                insert("a.jpg", 2, HexFormat.of().parseHex(profile));
            }
            assertEquals(0, run("gray ./a.jpg"), "fault " + fault + ": " + err);
        }
    }

    @Test
    void refusesAPngThatLosesItsTransparency() throws IOException {
        save(filled(3, 2, TYPE_INT_RGB, 0x102030), "a.png");
        insert("a.png", AFTER_HEADER, chunk("tRNS", new byte[5]));
        fails("gray ./a.png", "./a.png: is not a whole picture: tRNS chunk");
    }

    /** With no place for a cache on the disk. */
    @Test
    void worksInMemoryOnly() throws IOException {
        save(filled(3, 2, TYPE_INT_RGB, 0x102030), "a.png");
        Files.createDirectory(file("cache"));
        ImageIO.setCacheDirectory(file("cache").toFile());
        try {
            Files.delete(file("cache"));
            assertEquals(0, run("blur ./a.png ./b.png --radius 1"), err);
            assertEquals(0, run("blur ./a.png ./b.jpg --radius 1"), err);
        } finally {
            ImageIO.setCacheDirectory(null);
        }
    }

    /** By content, whatever the name. */
    @Test
    void readsWhatThePlatformAndItsPlugInsRead() throws IOException {
        final String lossless =
                "524946461C000000574542505650384C0F0000002F024000000710FD8FFE0722A2FF0100";
        final BufferedImage image = filled(3, 2, TYPE_INT_RGB, 0xFF0000);
        for (final String kind : new String[] {"gif", "bmp", "tiff"}) {
            assertTrue(ImageIO.write(image, kind, file(kind).toFile()));
            assertEquals("FFFF0000", lastPixel(kind), kind);
        }
        Files.write(file("webp"), HexFormat.of().parseHex(lossless));
        assertEquals("FFFF0000", lastPixel("webp"));
        final WritableRaster cmyk =
                Raster.createInterleavedRaster(DataBuffer.TYPE_BYTE, 3, 2, 4, null);
        try (ImageOutputStream to = ImageIO.createImageOutputStream(file("cmyk").toFile())) {
            final ImageWriter writer = ImageIO.getImageWritersByFormatName("jpeg").next();
            writer.setOutput(to);
            writer.write(new IIOImage(cmyk, null, null));
        }
        insert("cmyk", 2, HexFormat.of().parseHex("FFEE000E41646F626500640000000000"));
        assertEquals("FF000000", lastPixel("cmyk")); // by its marker, 0 is full ink
    }

    /** Each note in a file of each kind, out of one of each kind. */
    @Test
    void keepsWhatThePictureIsMeantToLookLike() throws Exception {
        final byte[] profile = ICC_Profile.getInstance(ColorSpace.CS_LINEAR_RGB).getData();
        final ByteArrayOutputStream zipped = new ByteArrayOutputStream();
        zipped.writeBytes(new byte[] {'x', 0, 0});
        try (DeflaterOutputStream zip = new DeflaterOutputStream(zipped)) {
            zip.write(profile);
        }
        final String exif = // Make, orientation 6
                "4D4D002A000000080002010F00020000000441636D00011200030000000100060000" + "00000000";
        save(filled(3, 2, TYPE_INT_RGB, 0x102030), "a.png");
        insert("a.png", AFTER_HEADER, chunk("gAMA", new byte[] {0, 0, (byte) 0xAB, (byte) 0xCD}));
        insert("a.png", AFTER_HEADER, chunk("iCCP", zipped.toByteArray()));
        insert("a.png", AFTER_HEADER, chunk("pHYs", HexFormat.of().parseHex("00002E230000171201")));
        insert("a.png", AFTER_HEADER, chunk("eXIf", HexFormat.of().parseHex(exif)));
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
            assertEquals(0, run("blur -r 0 --strip ./" + names[0] + " ./" + names[1]), err);
            assertFalse(notes(names[1]).matches("(?s).*(ICC Profile|Gamma|PNG-pHYs|150 dots).*"));
            assertFalse(hex(names[1]).contains("41636D00"));
            assertEquals(0, run("blur -r 0 ./" + names[0] + " ./" + names[1]), err);
        }
    }

    private String hex(String name) throws IOException {
        return HexFormat.of().withUpperCase().formatHex(Files.readAllBytes(file(name)));
    }

    private String notes(String name) throws Exception {
        final StringBuilder notes = new StringBuilder();
        for (final Directory directory :
                ImageMetadataReader.readMetadata(file(name).toFile()).getDirectories()) {
            directory.getTags().forEach(tag -> notes.append(tag).append("\n"));
        }
        return notes.toString();
    }

    private String lastPixel(String name) {
        try {
            final Bitmap bitmap =
                    Pictures.read(Source.of(file(name)), new PixelBudget(6)).bitmap;
            assertEquals(6, bitmap.getWidth() * bitmap.getHeight());
            return String.format("%08X", bitmap.getPixel(2, 1));
        } catch (Failure e) {
            return e.getMessage();
        }
    }

    private static byte[] chunk(String type, byte[] data) {
        final ByteBuffer chunk = ByteBuffer.allocate(12 + data.length).putInt(data.length);
        chunk.put(type.getBytes(StandardCharsets.US_ASCII)).put(data);
        final CRC32 crc = new CRC32();
        crc.update(chunk.array(), 4, 4 + data.length);
        return chunk.putInt((int) crc.getValue()).array();
    }
}
