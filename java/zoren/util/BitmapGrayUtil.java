package zoren.util;

import android.graphics.Bitmap;

/**
 * Measures a bitmap without changing it. Alpha takes no part: a transparent pixel counts like an
 * opaque one.
 *
 * <p>Both measures run on the calling thread with the pixels locked, and any number of threads may
 * take them at once, on one bitmap too as long as none writes it. Both return −1, and throw and log
 * nothing, for a bitmap that is null, recycled or not {@link Bitmap.Config#ARGB_8888} with packed
 * rows, and for one narrower or lower than 2 pixels.
 */
public final class BitmapGrayUtil {
    static {
        System.loadLibrary("zoren_runtime");
    }

    private BitmapGrayUtil() {}

    /**
     * Returns the mean luma (0.299 red + 0.587 green + 0.114 blue), truncated.
     *
     * @param bitmap the picture to measure
     * @return 0 (black) to 255 (white), or −1 for a bitmap that is refused
     */
    public static native int getBitmapGray(Bitmap bitmap);

    /**
     * Returns the hue that the coloured pixels share, as an opaque colour of the given saturation
     * and brightness.
     *
     * <p>A pixel is coloured when it is bright and saturated enough to carry a hue. There is a cast
     * when at least 5 % of the pixels are coloured, the strongest 30 degrees of hue hold at least
     * 40 % of those, and no other part of the circle comes close.
     *
     * <p>The percentages are taken as they are; outside 0 to 100 the colour has no meaning. With
     * saturation 0 and brightness 100 a cast is opaque white, which is −1 as well, and so cannot be
     * told from none.
     *
     * @param bitmap the picture to measure
     * @param saturation the saturation of the returned colour, 0 to 100 percent
     * @param brightness the brightness of the returned colour, 0 to 100 percent
     * @return the colour (alpha 255 in bits 24 to 31, red 16 to 23, green 8 to 15, blue 0 to 7), or
     *     −1 when there is no cast or the bitmap is refused
     */
    public static native int getBitmapColorCast(Bitmap bitmap, int saturation, int brightness);
}
