package android.graphics;

import static org.junit.jupiter.api.Assertions.*;

import android.graphics.Bitmap.Config;
import org.junit.jupiter.api.Test;
import zoren.util.BitmapGrayUtil;
import zoren.util.BlurUtil;

/** What the image natives refuse; in the bitmaps' package, which shows locks and padded rows. */
class BitmapNativesTest {
    @Test
    void refusesWhatItCannotRead() {
        final Bitmap[] refused = {
            null,
            Bitmap.createBitmap(2, 2, Config.ARGB_8888),
            Bitmap.createPadded(3, 2, Config.ARGB_8888, 16),
            Bitmap.createPadded(4, 2, Config.RGB_565, 16), // as many bytes a row as of packed words
            Bitmap.createPadded(4, 2, Config.ALPHA_8, 16),
            Bitmap.createBitmap(1, 3, Config.ARGB_8888),
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
}
