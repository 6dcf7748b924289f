package android.graphics;

import static org.junit.jupiter.api.Assertions.*;

import android.graphics.Bitmap.Config;
import java.lang.reflect.Method;
import java.nio.*;
import java.nio.file.Files;
import java.nio.file.Path;
import java.util.*;
import java.util.stream.Collectors;
import org.junit.jupiter.api.Test;
import org.junit.jupiter.params.ParameterizedTest;
import org.junit.jupiter.params.provider.CsvSource;
import org.junit.jupiter.params.provider.ValueSource;
import zoren.util.BitmapGrayUtil;
import zoren.util.BlurUtil;

class BitmapTest {
    private static final Config ARGB = Config.ARGB_8888;
    private static final int[] SIX = {1, 2, 3, 4, 5, 6};
    private static final int MAX = Integer.MAX_VALUE;
    private static final int MIN = Integer.MIN_VALUE;

    @ParameterizedTest
    @CsvSource({
        // colour set, bytes in memory, colour read
        "ARGB_8888, 00FF8001, ff800100, 00FF8001", // transparent keeps its colour
        "RGB_565,   804D6A87, 504b,     FF4A6984",
        "RGB_565,   80B2957A, afb4,     FFB5967B", // the other bit everywhere
        "ALPHA_8,   9A123456, 9a,       9A000000",
    })
    void storesAPixel(Config config, String set, String bytes, String read) {
        final Bitmap bitmap = Bitmap.createBitmap(3, 2, config);
        bitmap.setPixel(2, 1, Integer.parseUnsignedInt(set, 16));
        assertEquals(Integer.parseUnsignedInt(read, 16), bitmap.getPixel(2, 1));
        final ByteBuffer memory = ByteBuffer.allocate(bitmap.getByteCount());
        bitmap.copyPixelsToBuffer(memory);
        final String hex = HexFormat.of().formatHex(memory.array());
        assertEquals("0".repeat(5 * bytes.length()) + bytes, hex);
        final Bitmap copy = Bitmap.createBitmap(3, 2, config);
        assertFalse(copy.sameAs(bitmap));
        copy.copyPixelsFromBuffer(memory.rewind());
        assertTrue(copy.sameAs(bitmap));
    }

    @ParameterizedTest
    @CsvSource({"ARGB_8888, 16", "RGB_565, 8", "ALPHA_8, 5"})
    void movesRectangles(Config config, int rowBytes) {
        final int[] six = new int[6];
        for (int i = 0; i < 6; ++i) { // colours that every configuration keeps
            six[i] = config == Config.ALPHA_8 ? i + 1 << 24 : 0xFF000000 | (i & 1) * 0xFF0000
                    | (i & 2) * 0x7F80 | (i & 4) * 0x3F | i >> 2 | i >> 1 & 2;
        }
        final Bitmap bitmap = Bitmap.createPadded(3, 2, config, rowBytes);
        bitmap.setPixels(six, 0, 3, 0, 0, 3, 2);
        assertTrue(bitmap.sameAs(Bitmap.createBitmap(six, 3, 2, config)), "padding does not count");
        final int[] colors = new int[8];
        bitmap.getPixels(colors, 6, -4, 1, 0, 2, 2); // the rows from the bottom of the array up
        assertArrayEquals(new int[] {0, 0, six[4], six[5], 0, 0, six[1], six[2]}, colors);
        bitmap.setPixels(colors, 2, 4, 0, 0, 2, 2);
        final int[] moved = {six[4], six[5], six[2], six[1], six[2], six[5]};
        assertTrue(bitmap.sameAs(Bitmap.createBitmap(moved, 3, 2, config)));
        bitmap.setPixels(six, 3, MIN, 0, 1, 3, 1); // the stride of a single row leads nowhere
        bitmap.getPixels(colors, 5, MAX, 0, 1, 3, 1);
        assertArrayEquals(new int[] {0, 0, six[4], six[5], 0, six[3], six[4], six[5]}, colors);
        bitmap.getPixels(null, MIN, 0, MIN, MAX, 0, MIN);
        bitmap.setPixels(null, MIN, 0, MIN, MAX, MIN, 0);
    }

    @ParameterizedTest
    @CsvSource({
        "1, 0, ARGB_8888, width and height",
        "-2147483648, 1, ARGB_8888, width and height",
        // The largest, which is more than these tests may have.
        "2147483647, 1, ALPHA_8, Cannot reserve 2147483647 bytes",
        "536870912, 1, ARGB_8888, bitmap rows of 2147483648 bytes",
        "32768, 16384, ARGB_8888, bitmap of 2147483648 bytes",
    })
    void refusesSizes(int width, int height, Config config, String message) {
        final Throwable refusal =
                assertThrows(Throwable.class, () -> Bitmap.createBitmap(width, height, config));
        assertTrue(refusal.getMessage().startsWith(message), refusal.getMessage());
    }

    /** bitmap_api.txt has the API level and signature of a method a line, as the reference. */
    @Test
    void isShapedAsThePublicReferenceSays() throws Exception {
        final Set<String> reference = new HashSet<>();
        for (final String line : Files.readAllLines(Path.of(System.getProperty("zoren.api")))) {
            final String[] columns = line.split(" ", 2);
            assertTrue(Integer.parseInt(columns[0]) <= 28, line);
            reference.add(columns[1]);
        }
        assertEquals(reference, Arrays.stream(Bitmap.class.getDeclaredMethods())
                .map(Method::toString).filter(text -> text.startsWith("public "))
                .map(text -> text.replaceAll("public |(java|android)\\.\\w+\\.|Bitmap[.$]", ""))
                .collect(Collectors.toSet()));
        assertEquals("[ALPHA_8, RGB_565, ARGB_4444, ARGB_8888, RGBA_F16, HARDWARE]",
                Arrays.toString(Config.values()));
        final Bitmap odd = Bitmap.createBitmap(3, 1, Config.RGB_565); // 6 bytes
        final List<String> differences = List.of(
                "RGBA_F16: " + refuses("UnsupportedOperation",
                        () -> Bitmap.createBitmap(1, 1, Config.RGBA_F16)),
                "few colours: " + refuses("ArrayIndexOutOfBounds", // a phone's, too
                        () -> Bitmap.createBitmap(SIX, 7, 1, ARGB)) + " for IllegalArgument",
                "from 2 ints: " + refuses("Runtime", // nothing copies a part of an element
                        () -> odd.copyPixelsFromBuffer(IntBuffer.allocate(2))));
        System.out.println("[   DEVICE ] Bitmap: " + reference.size() + " methods as in the public"
                + " reference, and differently " + differences);
    }

    @Test
    void refusesWrongUses() {
        final Bitmap bitmap = Bitmap.createBitmap(3, 2, ARGB);
        final Bitmap column = Bitmap.createBitmap(1, 3, ARGB);
        final Bitmap fixed = Bitmap.createBitmap(SIX, 3, 2, ARGB);
        final Bitmap gone = Bitmap.createPadded(3, 2, ARGB, 16);
        final ByteBuffer buffer = ByteBuffer.allocate(32);
        assertTrue(bitmap.isMutable() && !fixed.isMutable() && !fixed.isRecycled());
        assertEquals(32, gone.getByteCount());
        gone.recycle();
        assertEquals(0, gone.getByteCount());
        refuses("IllegalArgument", () -> Bitmap.createBitmap(SIX, 1, 0, ARGB));
        refuses("IllegalArgument", () -> Bitmap.createBitmap(SIX, 3, 2, Config.HARDWARE));
        refuses("IllegalArgument", () -> Bitmap.createPadded(3, 1, ARGB, 8));
        refuses("IllegalArgument", () -> Bitmap.createPadded(3, 1, ARGB, 14));
        refuses("IllegalArgument", () -> bitmap.getPixel(3, 0));
        refuses("IllegalArgument", () -> bitmap.setPixel(-1, 0, 0));
        refuses("IllegalArgument", () -> bitmap.setPixels(SIX, 0, 3, 0, -1, 3, 2));
        refuses("IllegalArgument", () -> bitmap.setPixels(SIX, 0, 3, 0, 0, -1, 2));
        refuses("IllegalArgument", () -> bitmap.getPixels(SIX, 0, 3, 0, 0, 3, -1));
        refuses("IllegalArgument", () -> bitmap.getPixels(SIX, 0, 3, 0, 1, 3, 2));
        refuses("IllegalArgument", () -> bitmap.setPixels(SIX, 0, 3, MAX, 0, 3, 2));
        refuses("IllegalArgument", () -> bitmap.getPixels(SIX, 0, 3, 0, MAX, 3, 2));
        refuses("IllegalArgument", () -> bitmap.setPixels(SIX, 0, 2, 0, 0, 3, 2));
        refuses("ArrayIndexOutOfBounds", () -> Bitmap.createBitmap(SIX, MAX, MAX, ARGB));
        refuses("ArrayIndexOutOfBounds", () -> bitmap.setPixels(SIX, 1, 3, 0, 0, 3, 2));
        refuses("ArrayIndexOutOfBounds", () -> bitmap.getPixels(SIX, 4, -3, 0, 0, 3, 2));
        refuses("ArrayIndexOutOfBounds", () -> bitmap.getPixels(SIX, -1, 3, 0, 0, 3, 2));
        refuses("ArrayIndexOutOfBounds", () -> bitmap.getPixels(SIX, 2, MIN, 0, 0, 3, 2));
        refuses("ArrayIndexOutOfBounds", () -> column.getPixels(SIX, 2, MAX, 0, 0, 1, 3));
        refuses("IllegalState", () -> fixed.setPixel(0, 0, 0));
        refuses("IllegalState", () -> fixed.setPixels(SIX, 0, 3, 0, 0, 0, 0));
        refuses("IllegalState", () -> gone.getPixel(0, 0));
        refuses("IllegalState", () -> gone.setPixel(0, 0, 0));
        refuses("IllegalState", () -> gone.getPixels(SIX, 0, 3, 0, 0, 0, 0));
        refuses("IllegalState", () -> gone.setPixels(SIX, 0, 3, 0, 0, 0, 0));
        refuses("IllegalState", () -> gone.copyPixelsToBuffer(buffer));
        refuses("IllegalState", () -> gone.copyPixelsFromBuffer(buffer));
        refuses("IllegalState", () -> gone.sameAs(gone));
        refuses("IllegalArgument", () -> fixed.sameAs(gone));
        refuses("Runtime", () -> bitmap.copyPixelsToBuffer(CharBuffer.allocate(12)));
        assertTrue(bitmap.sameAs(Bitmap.createBitmap(3, 2, ARGB)), "a refusal changes nothing");
        assertTrue(fixed.sameAs(Bitmap.createBitmap(SIX, 3, 2, ARGB)));
    }

    /** The image natives, with what they cannot read. */
    @Test
    void isRefusedByTheNatives() {
        final Bitmap[] refused = {
            null,
            Bitmap.createBitmap(2, 2, ARGB),
            Bitmap.createPadded(3, 2, ARGB, 16),
            Bitmap.createPadded(4, 2, Config.RGB_565, 16), // as many bytes a row as of packed words
            Bitmap.createPadded(4, 2, Config.ALPHA_8, 16),
            Bitmap.createBitmap(1, 3, ARGB),
        };
        refused[1].recycle();
        for (int i = 0; i < refused.length; ++i) {
            final Bitmap bitmap = refused[i];
            BlurUtil.getBlurEffect(bitmap, 1, 0xFF00FF00);
            assertEquals(-1, BitmapGrayUtil.getBitmapGray(bitmap), "bitmap " + i);
            assertEquals(-1, BitmapGrayUtil.getBitmapColorCast(bitmap, 100, 100), "bitmap " + i);
            assertEquals(0, bitmap == null ? 0 : bitmap.lockCount(), "bitmap " + i);
        }
    }

    @Test
    void isTheSameByPixels() {
        final Bitmap bitmap = Bitmap.createPadded(3, 2, Config.ALPHA_8, 5);
        final Bitmap other = Bitmap.createPadded(3, 2, Config.ALPHA_8, 4);
        other.copyPixelsFromBuffer(ByteBuffer.wrap(new byte[] {0, 0, 0, 9, 0, 0, 0, 9}));
        assertTrue(bitmap.sameAs(other), "with other bytes in its padding");
        assertFalse(bitmap.sameAs(null));
        assertTrue(Bitmap.createBitmap(3, 2, Config.ARGB_4444)
                .sameAs(Bitmap.createBitmap(3, 2, ARGB)), "4 bits a channel are stored as 8");
        assertFalse(bitmap.sameAs(Bitmap.createBitmap(4, 2, Config.ALPHA_8)));
        assertFalse(bitmap.sameAs(Bitmap.createBitmap(3, 3, Config.ALPHA_8)));
        assertFalse(bitmap.sameAs(Bitmap.createBitmap(3, 2, ARGB)));
    }

    @ParameterizedTest
    @ValueSource(ints = {1, 2, 4})
    void copiesBetweenPositionAndLimit(int elementBytes) {
        final Bitmap bitmap = Bitmap.createBitmap(new int[] {0x04010203, 0x08050607}, 2, 1, ARGB);
        final ByteBuffer bytes = ByteBuffer.allocate(20).order(ByteOrder.nativeOrder());
        final Buffer buffer = switch (elementBytes) {
            case 1 -> bytes.duplicate();
            case 2 -> bytes.asShortBuffer();
            default -> bytes.asIntBuffer();
        };
        final int end = 1 + 8 / elementBytes;
        refuses("Runtime", () -> bitmap.copyPixelsToBuffer(buffer.limit(end).position(2)));
        refuses("Runtime", () -> bitmap.copyPixelsFromBuffer(buffer));
        assertEquals(2, buffer.position());
        bitmap.copyPixelsToBuffer(buffer.position(1));
        assertEquals(end, buffer.position());
        final String expected = "00".repeat(elementBytes) + "0102030405060708" + "0".repeat(24);
        assertEquals(expected.substring(0, 40), HexFormat.of().formatHex(bytes.array()));
        final Bitmap copy = Bitmap.createBitmap(2, 1, ARGB);
        copy.copyPixelsFromBuffer(buffer.clear().position(1));
        assertEquals(end, buffer.position());
        assertEquals(buffer.capacity(), buffer.limit());
        assertTrue(copy.sameAs(bitmap));
    }

    private static String refuses(String thrown, Runnable use) {
        final Exception refusal = assertThrows(RuntimeException.class, use::run);
        assertEquals(thrown + "Exception", refusal.getClass().getSimpleName());
        return thrown;
    }
}
