package android.graphics;

import static org.junit.jupiter.api.Assertions.*;

import android.graphics.Bitmap.Config;
import java.nio.ByteBuffer;
import java.util.stream.IntStream;
import java.util.stream.Stream;
import org.junit.jupiter.api.RepeatedTest;
import org.junit.jupiter.api.Test;
import org.junit.jupiter.params.ParameterizedTest;
import org.junit.jupiter.params.provider.CsvSource;
import zoren.util.BitmapGrayUtil;
import zoren.util.BlurUtil;

/** The image natives on real bitmaps; in their package, which shows locks and padded rows. */
class BitmapNativesTest {
    @ParameterizedTest
    @CsvSource({
        // radius, colour, 2 x 2 pixels before and after
        "1, 40FF8800, FFFF0000 00000000 FFFF0000 00000000, FFC92200 FF732200 FFC92200 FF732200",
        "23170.75, 80FF0000, 11C80100 00000000 800000FF FFFFFFFF, 11C80100 0 800000FF FFFFFFFF",
    })
    void blursAndLaysTheColourOver(float radius, String color, String before, String after) {
        final Bitmap bitmap = Bitmap.createBitmap(colors(before), 2, 2, Config.ARGB_8888);
        BlurUtil.getBlurEffect(bitmap, radius, colors(color)[0]);
        final Bitmap expected = Bitmap.createBitmap(colors(after), 2, 2, Config.ARGB_8888);
        assertArrayEquals(bytes(expected), bytes(bitmap));
        assertEquals(0, bitmap.lockCount());
    }

    @ParameterizedTest
    @CsvSource({"00FF0000, 76, FFCC7F66", "FF00FF00, 149, FF66CC66", "FF808080, 128, FFFFFFFF"})
    void measuresGrayAndCast(String color, int gray, String cast) {
        final Bitmap bitmap = Bitmap.createBitmap(10, 10, Config.ARGB_8888);
        bitmap.setPixels(colors((color + " ").repeat(100)), 0, 10, 0, 0, 10, 10);
        assertEquals(gray, BitmapGrayUtil.getBitmapGray(bitmap));
        assertEquals(colors(cast)[0], BitmapGrayUtil.getBitmapColorCast(bitmap, 50, 80));
        assertEquals(0, bitmap.lockCount());
    }

    @Test
    void refusesWhatItCannotRead() {
        final Bitmap[] refused = {
            null,
            Bitmap.createBitmap(2, 2, Config.ARGB_8888),
            Bitmap.createPadded(3, 2, Config.ARGB_8888, 16),
            Bitmap.createPadded(4, 2, Config.RGB_565, 16), // as many bytes a row as of packed words
            Bitmap.createPadded(4, 2, Config.ALPHA_8, 16),
            Bitmap.createBitmap(1, 3, Config.ARGB_8888),
            Bitmap.createBitmap(3, 1, Config.ARGB_8888),
        };
        refused[1].recycle();
        for (int i = 0; i < refused.length; ++i) {
            final Bitmap bitmap = refused[i];
            BlurUtil.getBlurEffect(bitmap, 1, 0xFF00FF00);
            assertEquals(-1, BitmapGrayUtil.getBitmapGray(bitmap), "bitmap " + i);
            assertEquals(-1, BitmapGrayUtil.getBitmapColorCast(bitmap, 100, 100), "bitmap " + i);
            assertEquals(0, bitmap == null ? 0 : bitmap.lockCount(), "bitmap " + i);
            if (i > 1) {
                assertArrayEquals(new byte[bitmap.getByteCount()], bytes(bitmap), "bitmap " + i);
            }
        }
    }

    @RepeatedTest(20)
    void mayBeRecycledDuringACall() throws InterruptedException {
        final Bitmap bitmap = Bitmap.createBitmap(400, 400, Config.ARGB_8888);
        bitmap.setPixels(IntStream.generate(() -> -1).limit(160000).toArray(), 0, 400, 0, 0, 400, 400);
        final Thread other = new Thread(bitmap::recycle);
        other.start();
        final int gray = BitmapGrayUtil.getBitmapGray(bitmap);
        assertTrue(gray == 255 || gray == -1, "gray " + gray);
        BlurUtil.getBlurEffect(bitmap, 30, 0x40FF8800);
        other.join();
        assertEquals(-1, BitmapGrayUtil.getBitmapGray(bitmap));
        assertEquals(0, bitmap.lockCount());
    }

    private static int[] colors(String hex) {
        return Stream.of(hex.split(" ")).mapToInt(x -> Integer.parseUnsignedInt(x, 16)).toArray();
    }

    private static byte[] bytes(Bitmap bitmap) {
        final ByteBuffer bytes = ByteBuffer.allocate(bitmap.getByteCount());
        bitmap.copyPixelsToBuffer(bytes);
        return bytes.array();
    }
}
