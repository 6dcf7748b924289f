package android.graphics;

import java.lang.invoke.MethodHandles;
import java.lang.invoke.VarHandle;
import java.nio.Buffer;
import java.nio.ByteBuffer;
import java.nio.ByteOrder;
import java.nio.IntBuffer;
import java.nio.ShortBuffer;
import java.util.Objects;

/**
 * A picture whose pixels Java and native code share: the host's stand-in for the phone's class,
 * with the part of its public shape that the framework uses.
 *
 * <p>The pixels lie in a direct buffer, so native code works on them in place. Colours go in and
 * out as ints, {@code 0xAARRGGBB}, and are stored as they are given: unlike on a phone, nothing is
 * multiplied by alpha, so an {@link Config#ARGB_8888} bitmap returns exactly the colours it was
 * given.
 *
 * <p>Instances are no more thread-safe than the phone's: threads that share one take turns. Locks
 * by native code are counted without a race, but keep nobody from reading or writing.
 */
public final class Bitmap {
    /** How a pixel is stored. */
    public enum Config {
        /** One byte, the alpha. Reads back as that alpha over black: {@code 0xAA000000}. */
        ALPHA_8(1, 8),
        /**
         * A 16-bit word: red 5 bits, green 6, blue 5, from the top. The lower bits of a colour and
         * its alpha are dropped; it reads back opaque, each channel widened by repeating its top
         * bits.
         */
        RGB_565(2, 4),
        /** A bitmap of it is made as {@link #ARGB_8888}. */
        ARGB_4444(4, 1),
        /** Four bytes: red, green, blue, alpha. */
        ARGB_8888(4, 1),
        /** Four half floats; the stand-in has no bitmap of it. */
        RGBA_F16(8, 0),
        /** Pixels in graphic memory, which the set methods and native code cannot reach. */
        HARDWARE(0, 0);

        private final int bytesPerPixel;
        private final int nativeFormat; // AndroidBitmapFormat

        Config(int bytesPerPixel, int nativeFormat) {
            this.bytesPerPixel = bytesPerPixel;
            this.nativeFormat = nativeFormat;
        }
    }

    // The header that native code reads, 32-bit words: width, height, row bytes, format, state. The
    // state counts the locks in its low 31 bits; its sign bit says that the bitmap is recycled.
    private static final int HEADER_BYTES = 20;
    private static final int STATE_OFFSET = 16;
    private static final int RECYCLED = 0x80000000;
    private static final VarHandle STATE =
            MethodHandles.byteBufferViewVarHandle(int[].class, ByteOrder.nativeOrder());

    private final int width;
    private final int height;
    private final int rowBytes;
    private final Config config;
    private final boolean mutable;
    private final ByteBuffer header; // by this name and type to native code
    private ByteBuffer pixels; // likewise; null once released

    private Bitmap(int width, int height, Config config, int rowBytes, boolean mutable) {
        final long byteCount = (long) rowBytes * height;
        if (byteCount > Integer.MAX_VALUE) {
            throw new OutOfMemoryError("bitmap of " + byteCount + " bytes");
        }
        this.width = width;
        this.height = height;
        this.rowBytes = rowBytes;
        this.config = config;
        this.mutable = mutable;
        // Little-endian words put red first in memory, as every platform this runs on has it.
        pixels = ByteBuffer.allocateDirect((int) byteCount).order(ByteOrder.LITTLE_ENDIAN);
        header = ByteBuffer.allocateDirect(HEADER_BYTES).order(ByteOrder.nativeOrder());
        header.putInt(0, width).putInt(4, height).putInt(8, rowBytes);
        header.putInt(12, config.nativeFormat);
    }

    /**
     * Returns a new mutable bitmap, all of whose bytes are zero.
     *
     * @throws IllegalArgumentException if the width or height is not positive, or for HARDWARE
     * @throws UnsupportedOperationException for RGBA_F16, which a phone has
     * @throws OutOfMemoryError if the pixels exceed 2147483647 bytes or the memory there is
     */
    public static Bitmap createBitmap(int width, int height, Config config) {
        return create(width, height, config, true);
    }

    /**
     * Returns a new immutable bitmap with the given colours, row by row from the top.
     *
     * @throws IllegalArgumentException if the width or height is not positive, or for HARDWARE
     * @throws UnsupportedOperationException for RGBA_F16, which a phone has
     * @throws ArrayIndexOutOfBoundsException if there are fewer colours than pixels
     * @throws OutOfMemoryError if the pixels exceed 2147483647 bytes or the memory there is
     */
    public static Bitmap createBitmap(int[] colors, int width, int height, Config config) {
        checkSize(width, height);
        checkArray(colors, 0, width, width, height);
        final Bitmap bitmap = create(width, height, config, false);
        bitmap.store(colors, 0, width, 0, 0, width, height);
        return bitmap;
    }

    /**
     * Returns a new mutable bitmap whose rows lie {@code rowBytes} apart, for tests of native code
     * that must not take rows for packed.
     */
    static Bitmap createPadded(int width, int height, Config config, int rowBytes) {
        checkSize(width, height);
        if (rowBytes < packedRowBytes(width, config) || rowBytes % config.bytesPerPixel != 0) {
            throw new IllegalArgumentException("rowBytes must hold a row of whole pixels");
        }
        return new Bitmap(width, height, config, rowBytes, true);
    }

    private static Bitmap create(int width, int height, Config config, boolean mutable) {
        checkSize(width, height);
        Objects.requireNonNull(config, "config");
        if (config == Config.HARDWARE) {
            throw new IllegalArgumentException("HARDWARE bitmaps are copies of others");
        }
        if (config == Config.RGBA_F16) {
            throw new UnsupportedOperationException("RGBA_F16 is not stored here");
        }
        final Config stored = config == Config.ARGB_4444 ? Config.ARGB_8888 : config;
        return new Bitmap(width, height, stored, packedRowBytes(width, stored), mutable);
    }

    private static int packedRowBytes(int width, Config config) {
        final long rowBytes = (long) width * config.bytesPerPixel;
        if (rowBytes > Integer.MAX_VALUE) {
            throw new OutOfMemoryError("bitmap rows of " + rowBytes + " bytes");
        }
        return (int) rowBytes;
    }

    /** Returns the pixels a row. */
    public int getWidth() {
        return width;
    }

    /** Returns the number of rows. */
    public int getHeight() {
        return height;
    }

    /** Returns how the pixels are stored. */
    public Config getConfig() {
        return config;
    }

    /** Returns the bytes from one row to the next. */
    public int getRowBytes() {
        return rowBytes;
    }

    /** Returns the bytes of all rows, or 0 once the bitmap is recycled. */
    public int getByteCount() {
        return isRecycled() ? 0 : rowBytes * height;
    }

    /** Tells whether the set methods may change the pixels. Native code may in any case. */
    public boolean isMutable() {
        return mutable;
    }

    /**
     * Gives the pixels up; the bitmap can't be read, written or locked any more. While native code
     * holds the pixels locked their memory stays valid: it is released when this is called again
     * after the last unlock, or with the bitmap itself.
     */
    public void recycle() {
        final int before = (int) STATE.getAndBitwiseOr(header, STATE_OFFSET, RECYCLED);
        if ((before & ~RECYCLED) == 0) {
            pixels = null;
        }
    }

    /** Tells whether the pixels have been given up. */
    public boolean isRecycled() {
        return (int) STATE.getAcquire(header, STATE_OFFSET) < 0;
    }

    /** Returns how many locks native code holds. */
    int lockCount() {
        return (int) STATE.getAcquire(header, STATE_OFFSET) & ~RECYCLED;
    }

    /**
     * Returns the colour of one pixel.
     *
     * @throws IllegalStateException if the bitmap is recycled
     * @throws IllegalArgumentException if the pixel lies outside the bitmap
     */
    public int getPixel(int x, int y) {
        checkNotRecycled();
        checkPixel(x, y);
        final int[] color = new int[1];
        load(color, 0, 1, x, y, 1, 1);
        return color[0];
    }

    /**
     * Sets the colour of one pixel.
     *
     * @throws IllegalStateException if the bitmap is recycled or not mutable
     * @throws IllegalArgumentException if the pixel lies outside the bitmap
     */
    public void setPixel(int x, int y, int color) {
        checkNotRecycled();
        checkMutable();
        checkPixel(x, y);
        store(new int[] {color}, 0, 1, x, y, 1, 1);
    }

    /**
     * Reads the colours of a rectangle. Row {@code i} of it starts at {@code offset + i * stride}
     * in {@code colors}; the stride may be negative. An empty rectangle reads nothing and is not
     * checked.
     *
     * @throws IllegalStateException if the bitmap is recycled
     * @throws IllegalArgumentException if the rectangle leaves the bitmap, or the stride's amount
     *     is below the rectangle's width
     * @throws ArrayIndexOutOfBoundsException if the colours leave the array
     */
    public void getPixels(
            int[] colors, int offset, int stride, int x, int y, int width, int height) {
        checkNotRecycled();
        if (width == 0 || height == 0) {
            return;
        }
        checkRectangle(x, y, width, height);
        checkArray(colors, offset, stride, width, height);
        load(colors, offset, stride, x, y, width, height);
    }

    /**
     * Sets the colours of a rectangle, laid out as in {@link #getPixels}.
     *
     * @throws IllegalStateException if the bitmap is recycled or not mutable
     * @throws IllegalArgumentException if the rectangle leaves the bitmap, or the stride's amount
     *     is below the rectangle's width
     * @throws ArrayIndexOutOfBoundsException if the colours leave the array
     */
    public void setPixels(
            int[] colors, int offset, int stride, int x, int y, int width, int height) {
        checkNotRecycled();
        checkMutable();
        if (width == 0 || height == 0) {
            return;
        }
        checkRectangle(x, y, width, height);
        checkArray(colors, offset, stride, width, height);
        store(colors, offset, stride, x, y, width, height);
    }

    /**
     * Copies the stored bytes of all rows, as they are, to a byte, short or int buffer in native
     * byte order, from its position on, which moves behind them.
     *
     * @throws IllegalStateException if the bitmap is recycled
     * @throws RuntimeException if the buffer is too small, of another kind, or its elements don't
     *     divide the byte count
     */
    public void copyPixelsToBuffer(Buffer destination) {
        checkNotRecycled();
        checkBuffer(destination);
        final ByteBuffer source = wholePixels();
        if (destination instanceof ByteBuffer bytes) {
            bytes.put(source);
        } else if (destination instanceof ShortBuffer shorts) {
            shorts.put(source.asShortBuffer());
        } else {
            ((IntBuffer) destination).put(source.asIntBuffer());
        }
    }

    /**
     * Copies the stored bytes of all rows from a byte, short or int buffer in native byte order,
     * from its position on, which moves behind them.
     *
     * @throws IllegalStateException if the bitmap is recycled
     * @throws RuntimeException if the buffer is too small, of another kind, or its elements don't
     *     divide the byte count
     */
    public void copyPixelsFromBuffer(Buffer source) {
        checkNotRecycled();
        final int elements = checkBuffer(source);
        final int end = source.position() + elements;
        final ByteBuffer destination = wholePixels();
        if (source instanceof ByteBuffer bytes) {
            destination.put(bytes.duplicate().limit(end));
        } else if (source instanceof ShortBuffer shorts) {
            destination.asShortBuffer().put(shorts.duplicate().limit(end));
        } else {
            destination.asIntBuffer().put(((IntBuffer) source).duplicate().limit(end));
        }
        source.position(end);
    }

    /**
     * Tells whether the other bitmap has the same size, configuration and pixels. Padding between
     * rows doesn't count.
     *
     * @throws IllegalStateException if this bitmap is recycled
     * @throws IllegalArgumentException if the other one is
     */
    public boolean sameAs(Bitmap other) {
        checkNotRecycled();
        if (this == other) {
            return true;
        }
        if (other == null) {
            return false;
        }
        if (other.isRecycled()) {
            throw new IllegalArgumentException("can't compare with a recycled bitmap");
        }
        if (width != other.width || height != other.height || config != other.config) {
            return false;
        }
        final int rowLength = packedRowBytes(width, config);
        for (int y = 0; y < height; y++) {
            final ByteBuffer row = pixels.slice(y * rowBytes, rowLength);
            if (!row.equals(other.pixels.slice(y * other.rowBytes, rowLength))) {
                return false;
            }
        }
        return true;
    }

    // All arguments of load and store have been checked.

    private void load(int[] colors, int offset, int stride, int x, int y, int columns, int rows) {
        final IntBuffer words = pixels.asIntBuffer();
        for (int row = 0; row < rows; row++) {
            final int from = (y + row) * rowBytes + x * config.bytesPerPixel;
            final int to = offset + row * stride;
            switch (config) {
                case ARGB_8888 -> {
                    words.get(from / 4, colors, to, columns);
                    for (int i = 0; i < columns; i++) {
                        colors[to + i] = swapRedAndBlue(colors[to + i]);
                    }
                }
                case RGB_565 -> {
                    for (int i = 0; i < columns; i++) {
                        colors[to + i] = widen565(pixels.getShort(from + 2 * i));
                    }
                }
                case ALPHA_8 -> {
                    for (int i = 0; i < columns; i++) {
                        colors[to + i] = pixels.get(from + i) << 24;
                    }
                }
            }
        }
    }

    private void store(int[] colors, int offset, int stride, int x, int y, int columns, int rows) {
        final IntBuffer words = pixels.asIntBuffer();
        final int[] swapped = new int[config == Config.ARGB_8888 ? columns : 0];
        for (int row = 0; row < rows; row++) {
            final int from = offset + row * stride;
            final int to = (y + row) * rowBytes + x * config.bytesPerPixel;
            switch (config) {
                case ARGB_8888 -> {
                    for (int i = 0; i < columns; i++) {
                        swapped[i] = swapRedAndBlue(colors[from + i]);
                    }
                    words.put(to / 4, swapped);
                }
                case RGB_565 -> {
                    for (int i = 0; i < columns; i++) {
                        pixels.putShort(to + 2 * i, narrow565(colors[from + i]));
                    }
                }
                case ALPHA_8 -> {
                    for (int i = 0; i < columns; i++) {
                        pixels.put(to + i, (byte) (colors[from + i] >>> 24));
                    }
                }
            }
        }
    }

    /** Turns a colour int into the word in memory and back: red and blue change places. */
    private static int swapRedAndBlue(int word) {
        return (word & 0xFF00FF00) | (word & 0xFF) << 16 | (word >>> 16 & 0xFF);
    }

    private static short narrow565(int color) {
        return (short) (color >>> 8 & 0xF800 | color >>> 5 & 0x07E0 | color >>> 3 & 0x001F);
    }

    private static int widen565(short word) {
        final int red = word >>> 11 & 0x1F;
        final int green = word >>> 5 & 0x3F;
        final int blue = word & 0x1F;
        return 0xFF000000
                | (red << 3 | red >> 2) << 16
                | (green << 2 | green >> 4) << 8
                | (blue << 3 | blue >> 2);
    }

    /** Returns a view of all bytes with a position of its own. */
    private ByteBuffer wholePixels() {
        return pixels.duplicate().order(ByteOrder.nativeOrder());
    }

    /** Returns how many elements of the buffer hold all rows. */
    private int checkBuffer(Buffer buffer) {
        final int elementBytes;
        if (buffer instanceof ByteBuffer) {
            elementBytes = 1;
        } else if (buffer instanceof ShortBuffer) {
            elementBytes = 2;
        } else if (buffer instanceof IntBuffer) {
            elementBytes = 4;
        } else {
            throw new RuntimeException("unsupported kind of buffer");
        }
        final int byteCount = getByteCount();
        if (byteCount % elementBytes != 0) {
            throw new RuntimeException("pixels are no whole number of buffer elements");
        }
        if (buffer.remaining() < byteCount / elementBytes) {
            throw new RuntimeException("buffer is not large enough for the pixels");
        }
        return byteCount / elementBytes;
    }

    private void checkNotRecycled() {
        if (isRecycled()) {
            throw new IllegalStateException("bitmap is recycled");
        }
    }

    private void checkMutable() {
        if (!mutable) {
            throw new IllegalStateException("bitmap is immutable");
        }
    }

    private static void checkSize(int width, int height) {
        if (width <= 0 || height <= 0) {
            throw new IllegalArgumentException("width and height must be > 0");
        }
    }

    private void checkPixel(int x, int y) {
        checkRectangle(x, y, 1, 1);
    }

    private void checkRectangle(int x, int y, int columns, int rows) {
        if (x < 0 || y < 0) {
            throw new IllegalArgumentException("x and y must be >= 0");
        }
        if (columns < 0 || rows < 0) {
            throw new IllegalArgumentException("width and height must be >= 0");
        }
        if ((long) x + columns > width || (long) y + rows > height) {
            throw new IllegalArgumentException("rectangle must lie within the bitmap");
        }
    }

    private static void checkArray(int[] colors, int offset, int stride, int columns, int rows) {
        if (Math.abs((long) stride) < columns) {
            throw new IllegalArgumentException("abs(stride) must be >= width");
        }
        final long lastRow = offset + (rows - 1) * (long) stride;
        if (offset < 0
                || lastRow < 0
                || Math.max(offset, lastRow) + columns > colors.length) {
            throw new ArrayIndexOutOfBoundsException(
                    "colors from " + offset + " with stride " + stride + " leave the array");
        }
    }
}
