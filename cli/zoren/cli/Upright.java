package zoren.cli;

import android.graphics.Bitmap;
import java.awt.Point;
import java.awt.color.ColorSpace;
import java.awt.image.BufferedImage;
import java.awt.image.ColorModel;
import java.awt.image.ComponentColorModel;
import java.awt.image.DataBuffer;
import java.awt.image.IndexColorModel;
import java.awt.image.Raster;
import java.awt.image.SampleModel;
import java.awt.image.WritableRaster;
import java.util.List;

/** Brings a decoder's samples to a bitmap, rows as they come, each to where it is shown. */
final class Upright {
    private final int width;
    private final int height;
    private final boolean rowsBecomeColumns;
    private final boolean reversed;
    private final boolean fromFarSide;
    private Bitmap bitmap;
    private Sink sink;

    /** For a picture stored with this size and EXIF orientation, 1 to 8. */
    Upright(int width, int height, int orientation) {
        this.width = width;
        this.height = height;
        rowsBecomeColumns = orientation >= 5;
        reversed = List.of(2, 3, 7, 8).contains(orientation);
        fromFarSide = List.of(3, 4, 6, 7).contains(orientation);
    }

    /** Returns the bitmap with all that was stored. */
    Bitmap bitmap() {
        if (sink != null) {
            sink.flush();
        }
        return target();
    }

    /** Takes the bitmap's memory when the first samples come: a mere header costs none. */
    private Bitmap target() {
        if (bitmap == null) {
            bitmap =
                    Bitmap.createBitmap(
                            rowsBecomeColumns ? height : width,
                            rowsBecomeColumns ? width : height,
                            Bitmap.Config.ARGB_8888);
        }
        return bitmap;
    }

    /** Returns an image that has no samples: what is stored in it goes on to the bitmap. */
    BufferedImage asImage(ColorModel model, SampleModel samples) {
        sink = new Sink(model, samples);
        return new BufferedImage(model, sink, model.isAlphaPremultiplied(), null);
    }

    /** Puts the samples in place; their top left one belongs at x, y of the stored picture. */
    void put(int x, int y, ColorModel model, Raster samples) {
        final int count = samples.getWidth();
        final int[] colors = new int[count];
        final int[] row = new int[samples.getNumBands() * count];
        for (int i = 0; i < samples.getHeight(); ++i) {
            final int line = samples.getMinY() + i;
            if (isPlain(model)) {
                samples.getPixels(samples.getMinX(), line, count, 1, row);
                convert(model, row, samples.getNumBands(), count, colors);
            } else {
                Object pixel = null;
                for (int k = 0; k < count; ++k) {
                    pixel = samples.getDataElements(samples.getMinX() + k, line, pixel);
                    colors[k] = model.getRGB(pixel);
                }
            }
            putRow(x, y + i, colors, count);
        }
    }

    /** Puts colours in place, of which it changes the order. */
    private void putRow(int x, int y, int[] colors, int count) {
        final int start = reversed ? width - x - count : x;
        final int line = fromFarSide ? height - 1 - y : y;
        if (reversed) {
            reverse(colors, count);
        }
        if (rowsBecomeColumns) {
            target().setPixels(colors, 0, 1, line, start, 1, count);
        } else {
            target().setPixels(colors, 0, count, start, line, count, 1);
        }
    }

    /**
     * Tells whether samples are taken as they are, of 8 or 16 bits. {@link ColorModel#getRGB} would
     * convert a gray one to another one by way of gamma.
     */
    private static boolean isPlain(ColorModel model) {
        final int space = model.getColorSpace().getType();
        final int type = model.getTransferType();
        return model instanceof ComponentColorModel
                && (space == ColorSpace.TYPE_GRAY || space == ColorSpace.TYPE_RGB)
                && !model.isAlphaPremultiplied()
                && (type == DataBuffer.TYPE_BYTE || type == DataBuffer.TYPE_USHORT);
    }

    /** Turns the samples of pixels, {@code bands} each, plain ones or a palette's, into ARGB. */
    private static void convert(
            ColorModel model, int[] samples, int bands, int count, int[] colors) {
        final boolean gray = model.getColorSpace().getType() == ColorSpace.TYPE_GRAY;
        final int type = model.getTransferType();
        for (int x = 0, i = 0; x < count; ++x, i += bands) {
            if (model instanceof IndexColorModel) {
                colors[x] = model.getRGB(samples[i]);
                continue;
            }
            final int red = toByte(samples[i], type);
            final int green = gray ? red : toByte(samples[i + 1], type);
            final int blue = gray ? red : toByte(samples[i + 2], type);
            final int alpha = model.hasAlpha() ? toByte(samples[i + bands - 1], type) : 255;
            colors[x] = alpha << 24 | red << 16 | green << 8 | blue;
        }
    }

    private static int toByte(int sample, int type) {
        return type == DataBuffer.TYPE_BYTE ? sample : (sample * 255 + 32767) / 65535;
    }

    private static void reverse(int[] row, int count) {
        for (int i = 0, j = count - 1; i < j; ++i, --j) {
            final int color = row[i];
            row[i] = row[j];
            row[j] = color;
        }
    }

    /** Takes samples by the ways that the platform's decoders have of storing them. */
    private final class Sink extends WritableRaster {
        private final ColorModel model;
        private final int[] row;
        private final int[] colors = new int[Upright.this.width];
        private int line; // of the pixels in row, which follow each other
        private int begin;
        private int end;

        Sink(ColorModel model, SampleModel samples) {
            super(
                    samples,
                    samples.createCompatibleSampleModel(1, 1).createDataBuffer(),
                    new Point());
            this.model = model;
            row = new int[numBands * colors.length];
        }

        @Override // by which JPEG's decoder stores a row
        public void setRect(int x, int y, Raster samples) {
            put(x + samples.getMinX(), y + samples.getMinY(), model, samples);
        }

        @Override // by which PNG's stores every pixel, of an interlaced picture some of a row
        public void setPixel(int x, int y, int[] pixel) {
            if (y != line || x != end) {
                flush();
                line = y;
                begin = x;
            }
            System.arraycopy(pixel, 0, row, numBands * (x - begin), numBands);
            end = x + 1;
        }

        void flush() {
            if (end > begin) {
                convert(model, row, numBands, end - begin, colors);
                putRow(begin, line, colors, end - begin);
            }
            begin = end;
        }
    }
}
