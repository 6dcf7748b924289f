package zoren.cli;

import android.graphics.Bitmap;

/** A decoded picture. Closed, it gives its pixels back. */
final class Picture implements AutoCloseable {
    final Bitmap bitmap;
    final Format format;
    final Notes notes;
    private final PixelBudget budget;

    Picture(Bitmap bitmap, Format format, Notes notes, PixelBudget budget) {
        this.bitmap = bitmap;
        this.format = format;
        this.notes = notes;
        this.budget = budget;
    }

    @Override
    public void close() {
        bitmap.recycle();
        budget.giveBack(bitmap.getWidth() * bitmap.getHeight());
    }
}
