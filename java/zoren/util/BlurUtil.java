package zoren.util;

import android.graphics.Bitmap;

/** Blurs a bitmap in place and lays a colour over it. */
public final class BlurUtil {
    static {
        System.loadLibrary("zoren_runtime");
    }

    private BlurUtil() {}

    /**
     * Blurs {@code bitmap} in place with a Gaussian of standard deviation {@code radius}, then lays
     * {@code color} over it.
     *
     * <p>The kernel spans 4 × {@code radius} pixels, truncated, less one when that is even. Beyond
     * the border the nearest edge pixel counts. Afterwards every pixel is opaque, whatever alpha it
     * had. A radius below 0.25 (zero, negative and NaN too) does not blur; the colour is still
     * applied.
     *
     * <p>The colour is blended by its alpha: 0 leaves the blurred picture as it is, 255 covers it,
     * with each channel one below the colour's own (0 stays 0).
     *
     * <p>A request that cannot be served returns normally and leaves the bitmap as it is: a bitmap
     * that is null, recycled or not {@link Bitmap.Config#ARGB_8888} with packed rows, a bitmap
     * narrower or lower than 2 pixels, a radius of 23170.75 or more, or too little memory. Nothing
     * is thrown and nothing is logged.
     *
     * <p>Runs on the calling thread with the pixels locked; any number of threads may call it, each
     * on a bitmap of its own.
     *
     * @param bitmap the picture to change
     * @param radius the standard deviation in pixels, 0.25 to below 23170.75
     * @param color the colour to lay over it, as packed by {@code android.graphics.Color}: alpha in
     *     bits 24 to 31, red 16 to 23, green 8 to 15, blue 0 to 7
     */
    public static native void getBlurEffect(Bitmap bitmap, float radius, int color);
}
