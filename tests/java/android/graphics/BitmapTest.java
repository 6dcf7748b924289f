package android.graphics;

import static org.junit.jupiter.api.Assertions.*;

import android.graphics.Bitmap.Config;
import java.nio.ByteBuffer;
import java.nio.IntBuffer;
import java.util.HexFormat;
import org.junit.jupiter.api.Test;
import org.junit.jupiter.params.ParameterizedTest;
import org.junit.jupiter.params.provider.CsvSource;

class BitmapTest {
    private static final Config ARGB = Config.ARGB_8888;
    private static final int[] SIX = {1, 2, 3, 4, 5, 6};

    @ParameterizedTest
    @CsvSource({
        // colour set, bytes in memory, colour read
        "ARGB_8888, 00FF8001, ff800100, 00FF8001", // transparent keeps its colour
        "RGB_565,   804D6A87, 504b,     FF4A6984",
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

    @Test
    void movesRectangles() {
        final Bitmap bitmap = Bitmap.createPadded(3, 2, ARGB, 16);
        bitmap.setPixels(SIX, 0, 3, 0, 0, 3, 2);
        assertTrue(bitmap.sameAs(Bitmap.createBitmap(SIX, 3, 2, ARGB)), "padding does not count");
        final int[] colors = new int[8];
        bitmap.getPixels(colors, 6, -4, 1, 0, 2, 2); // the rows from the bottom of the array up
        assertArrayEquals(new int[] {0, 0, 5, 6, 0, 0, 2, 3}, colors);
        bitmap.setPixels(colors, 2, 4, 0, 0, 2, 2);
        assertTrue(bitmap.sameAs(Bitmap.createBitmap(new int[] {5, 6, 3, 2, 3, 6}, 3, 2, ARGB)));
    }

    @Test
    void refusesWrongUses() {
        final Bitmap bitmap = Bitmap.createBitmap(3, 2, ARGB);
        final Bitmap fixed = Bitmap.createBitmap(SIX, 3, 2, ARGB);
        final Bitmap recycled = Bitmap.createBitmap(3, 2, ARGB);
        recycled.recycle();
        refuses("IllegalArgument", () -> Bitmap.createBitmap(SIX, 1, 0, ARGB));
        refuses("IllegalArgument", () -> bitmap.getPixel(3, 0));
        refuses("IllegalArgument", () -> bitmap.setPixels(SIX, 0, 3, 0, -1, 3, 2));
        refuses("IllegalArgument", () -> bitmap.getPixels(SIX, 0, 3, 0, 1, 3, 2));
        refuses("IllegalArgument", () -> bitmap.getPixels(SIX, 0, 2, 0, 0, 3, 2));
        refuses("ArrayIndexOutOfBounds", () -> Bitmap.createBitmap(SIX, 7, 1, ARGB));
        refuses("ArrayIndexOutOfBounds", () -> bitmap.setPixels(SIX, 1, 3, 0, 0, 3, 2));
        refuses("ArrayIndexOutOfBounds", () -> bitmap.getPixels(SIX, 2, 1 << 31, 0, 0, 3, 2));
        refuses("IllegalState", () -> fixed.setPixels(SIX, 0, 3, 0, 0, 3, 1));
        refuses("IllegalState", () -> recycled.getPixel(0, 0));
        refuses("Runtime", () -> bitmap.copyPixelsToBuffer(IntBuffer.allocate(5)));
    }

    private static void refuses(String thrown, Runnable use) {
        final Exception refusal = assertThrows(RuntimeException.class, use::run);
        assertEquals(thrown + "Exception", refusal.getClass().getSimpleName());
    }
}
