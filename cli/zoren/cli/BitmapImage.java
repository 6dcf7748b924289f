package zoren.cli;

import android.graphics.Bitmap;
import java.awt.Point;
import java.awt.image.BufferedImage;
import java.awt.image.ColorModel;
import java.awt.image.DirectColorModel;
import java.awt.image.Raster;
import java.awt.image.WritableRaster;

/** A bitmap as an encoder sees it: rows are copied when they are asked for. */
final class BitmapImage {
    private static final ColorModel OPAQUE =
            new DirectColorModel(24, 0xFF0000, 0xFF00, 0xFF);
    private static final ColorModel TRANSLUCENT = ColorModel.getRGBdefault();

    private BitmapImage() {}

    /** Returns the picture, with an alpha channel if that is allowed and some pixel not opaque. */
    static BufferedImage of(Bitmap bitmap, boolean alphaAllowed) {
        final ColorModel model = alphaAllowed && !isOpaque(bitmap) ? TRANSLUCENT : OPAQUE;
        return new BufferedImage(model, new Rows(bitmap, model), false, null);
    }

    private static boolean isOpaque(Bitmap bitmap) {
        final int[] row = new int[bitmap.getWidth()];
        boolean opaque = true;
        for (int y = 0; y < bitmap.getHeight() && opaque; ++y) {
            bitmap.getPixels(row, 0, row.length, 0, y, row.length, 1);
            for (final int color : row) {
                opaque &= color >>> 24 == 255;
            }
        }
        return opaque;
    }

    private static final class Rows extends WritableRaster {
        private final Bitmap bitmap;
        private final ColorModel model;

        Rows(Bitmap bitmap, ColorModel model) {
            super(
                    model.createCompatibleSampleModel(bitmap.getWidth(), bitmap.getHeight()),
                    model.createCompatibleSampleModel(1, 1).createDataBuffer(),
                    new Point());
            this.bitmap = bitmap;
            this.model = model;
        }

        @Override // by which PNG's encoder takes rows
        public int[] getPixels(int x, int y, int columns, int rows, int[] samples) {
            return createChild(x, y, columns, rows, x, y, null)
                    .getPixels(x, y, columns, rows, samples);
        }

        @Override // by which JPEG's does
        public Raster createChild(
                int x, int y, int columns, int rows, int childX, int childY, int[] bands) {
            final int[] colors = new int[columns * rows];
            bitmap.getPixels(colors, 0, columns, x, y, columns, rows);
            final WritableRaster copy = model.createCompatibleWritableRaster(columns, rows);
            copy.setDataElements(0, 0, columns, rows, colors);
            return copy.createChild(0, 0, columns, rows, childX, childY, bands);
        }
    }
}
